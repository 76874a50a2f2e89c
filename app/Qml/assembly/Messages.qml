import QtQuick 2.15
import "Advice.js" as Advice

// Every box of the window: what the manager reports, what has to be confirmed, and what this
// program is. Each report goes to the log as well.
//
// logged(text, tag)   a line for the log
// confirmed(purpose)  the question that was asked for `purpose` was answered with yes
Item {
    id: messages

    property var manager
    property string programName: ""
    property string modelName: ""
    property var successes: []

    signal logged(string text, string tag)
    signal confirmed(string purpose)

    function refuse(reason) {
        errorBox.show(reason);
    }

    function warnAboutModel(text) {
        logged(text, "WARNING");
        question.warn(qsTr("Check the lidar's model"), text, "");
    }

    function showAbout() {
        aboutBox.open();
    }

    function askSave(names) {
        question.ask("save", qsTr("Values out of range"),
            qsTr("These values are out of range or badly written:\n%1").arg(names.join("\n")),
            qsTr("The lidar may refuse them. Continue writes them all the same; Cancel goes back to the page."),
            qsTr("Continue"));
    }

    function askRestart() {
        question.ask("restart", qsTr("Restart the lidar?"),
                     qsTr("The lidar restarts and does not measure until it is up again."),
                     qsTr("The connection may be lost; press Connect once the lidar is back."),
                     qsTr("Restart"));
    }

    function askReset() {
        question.ask("reset", qsTr("Reset to factory settings?"),
                     qsTr("Every setting on the lidar goes back to its factory value."),
                     qsTr("This cannot be undone. The address may change; press Connect again then."),
                     qsTr("Reset"));
    }

    function askClose(sending) {
        question.warnAndAsk("close", qsTr("Close during the upgrade?"),
            sending ? qsTr("The firmware is being sent to the lidar.")
                    : qsTr("The upgrade is not over: the lidar has to restart and to tell what it runs then."),
            sending ? qsTr("Closing breaks the transfer off, and nothing here will tell which firmware the lidar runs then.")
                    : qsTr("After closing, nothing here will tell which firmware the lidar runs."),
            qsTr("Close Anyway"), qsTr("Stay"));
    }

    function showError() {
        const text = manager.errorMessage;
        if (text === "") {
            console.log("errorMessageChanged: no message");
            return;
        }
        logged(text, "ERROR");
        errorBox.show(text);
        manager.setErrorMsg("");
    }

    function showSuccess() {
        const text = manager.successMessage;
        if (text === "") {
            console.log("successMessageChanged: no message");
            return;
        }
        logged(text, "SUCCESS");
        successes = successes.concat([text]);
        Qt.callLater(showSuccesses);
        manager.setSuccessMsg("");
    }

    // What one action of the user brought, in one box: saving a page reports every command.
    function showSuccesses() {
        const text = successes.join("\n");
        successBox.show(text, Advice.forSuccess(text));
        successes = [];
    }

    Connections {
        target: messages.manager
        function onErrorMessageChanged() { messages.showError(); }
        function onSuccessMessageChanged() { messages.showSuccess(); }
        function onIsGetPBLVersionChanged() { serialBox.tell(messages.manager.isGetPBLVersion); }
    }

    ErrorInfoWindow { id: errorBox }
    SuccessInfoWindow { id: successBox }
    SerialBusyWindow { id: serialBox }
    MessageWindow {
        id: question

        onAccepted: messages.confirmed(purpose)
    }
    AboutWindow {
        id: aboutBox

        applicationName: messages.programName
        details: [qsTr("Model in use: %1").arg(messages.modelName)]
    }
}
