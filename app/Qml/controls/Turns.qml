import QtQuick 2.15

// Does one thing after the other, each in an event of its own: the window answers in between,
// however long each takes.
//
// waiting   what is still to be done, functions
// ended()   nothing is waiting any more
Timer {
    id: turns

    property var waiting: []

    signal ended()

    // A function, or several.
    function add(steps) {
        waiting = waiting.concat(steps);
        start();
    }

    // The same ahead of what is waiting.
    function addFirst(step) {
        waiting = [step].concat(waiting);
        start();
    }

    function clear() {
        waiting = [];
        stop();
    }

    interval: 0
    onTriggered: {
        const step = waiting[0];
        waiting = waiting.slice(1);
        if (waiting.length > 0)
            start();
        step();
        if (waiting.length === 0)
            ended();
    }
}
