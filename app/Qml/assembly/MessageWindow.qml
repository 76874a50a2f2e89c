import QtQuick 2.15
import "../controls"
import "../theme"

// A question or a warning. What is asked while another one is on the screen waits in line.
//
// ask(question)  a map with "title", "message", "advice" and "accept", the words of the main answer,
//                and as far as needed: "reject", the words of the way out ("Cancel" unless told
//                otherwise; null leaves it away), "other", those of a third answer, "dangerous" and
//                "guarded" as in DialogFrame, "purpose" and "argument" for whoever asks
// answered(answer, purpose, argument)  "accept", "reject" or "other"
DialogFrame {
    id: box

    property string purpose: ""
    property var argument
    property var queue: []

    signal answered(string answer, string purpose, var argument)

    function ask(question) {
        queue = queue.concat([question]);
        if (!visible)
            askNext();
    }

    function askNext() {
        const next = queue[0];
        queue = queue.slice(1);
        purpose = next.purpose || "";
        argument = next.argument;
        title = next.title;
        message = next.message;
        advice = next.advice;
        acceptText = next.accept;
        cancellable = next.reject !== null;
        rejectText = next.reject || qsTr("Cancel");
        otherText = next.other || "";
        dangerous = next.dangerous === true;
        guarded = dangerous || next.guarded === true;
        open();
    }

    objectName: "messageWindow"
    iconSource: "../icons/warning.svg"
    tone: Theme.warningColor
    onAccepted: answered("accept", purpose, argument)
    onRejected: answered("reject", purpose, argument)
    onOther: answered("other", purpose, argument)
    onClosed: if (queue.length > 0) askNext()
}
