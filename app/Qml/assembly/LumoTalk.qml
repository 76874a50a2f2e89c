import QtQuick 2.15

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

    // Lets the window show `text` before `operation` begins. False while another one is waited for.
    function run(text, operation) {
        if (activity.length > 0)
            return false;
        activity = text;
        start.operation = operation;
        start.start();
        return true;
    }

    // Runs `operation` now and gives what it gives.
    function ask(operation) {
        failed = false;
        reason = "";
        listening.enabled = true;
        const told = operation();
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

    Timer {
        id: start

        property var operation

        interval: 20
        onTriggered: {
            operation();
            talk.activity = "";
        }
    }
}
