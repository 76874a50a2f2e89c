import QtQuick 2.15

// A message box that only tells something. Messages that arrive while one is on the screen wait in
// line, so that none is lost, not even the same text twice.
//
// show(message, advice)  what happened, and what to do next; without advice adviceFor() is asked
// dismissed()            the last of the waiting messages was closed
DialogFrame {
    id: notice

    // A function that gives the advice for a message.
    property var adviceFor: message => ""
    readonly property int waiting: queue.length

    signal dismissed()

    property var queue: []

    function show(message, advice) {
        queue = queue.concat([{
            "message": message,
            "advice": advice === undefined || advice === "" ? adviceFor(message) : advice
        }]);
        if (!visible)
            showNext();
    }

    function showNext() {
        const next = queue[0];
        queue = queue.slice(1);
        message = next.message;
        advice = next.advice;
        open();
    }

    onClosed: {
        if (queue.length > 0)
            showNext();
        else
            dismissed();
    }
}
