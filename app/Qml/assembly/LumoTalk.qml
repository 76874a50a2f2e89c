import QtQuick 2.15
import Tevron 1.0
import "../controls"

// What the serial screen asks the lidar, one thing after the other. The window waits meanwhile, so
// that each is named before it begins.
//
// manager    the object that talks to the lidar
// activity   what is being done right now, as a sentence; empty when nothing is
// failed     the last operation came to nothing
// reason     why, as far as it was told
Item {
    id: talk

    property var manager
    property string activity: ""
    property bool failed: false
    property string reason: ""

    // Lets the window show `text` before the first of `operations` begins. False while others are
    // waited for.
    function run(text, operations) {
        if (activity.length > 0)
            return false;
        follow(text, operations);
        return true;
    }

    // The same, behind what is waited for.
    function follow(text, operations) {
        activity = text;
        turns.add(operations);
    }

    // Ahead of what is waited for; for an operation that leads to another.
    function goOn(operation) {
        turns.addFirst(operation);
    }

    // Gives up what has not begun.
    function drop() {
        turns.clear();
        activity = "";
    }

    // Runs `operation` now and gives what it gives.
    function ask(operation) {
        failed = false;
        reason = "";
        listening.enabled = true;
        let told;
        LongCalls.Run(() => told = operation());
        listening.enabled = false;
        return told;
    }

    Connections {
        id: listening

        target: talk.manager
        enabled: false
        function onErrorMessageChanged() { talk.failed = true; }
        function onSendLogMessage(msg, type) {
            if (type !== "ERROR")
                return;
            talk.failed = true;
            talk.reason = msg.replace(/^.*, ret:/, "");
        }
    }

    Turns {
        id: turns

        interval: 20
        onEnded: talk.activity = ""
    }
}
