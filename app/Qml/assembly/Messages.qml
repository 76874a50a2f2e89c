import QtQuick 2.15
import Tevron 1.0
import "../controls"
import "../theme"
import "Advice.js" as Advice

// All that the window says and asks: what the manager reports, what has to be confirmed, and what
// this program is. Each report goes to the log as well. A success is a notice that passes; trouble
// is a box.
//
// watch               how it stands with the connection, a LinkWatch
// logSuccesses        somebody else shows what succeeds: the log alone tells of it here
// logged(text, tag)   a line for the log
// confirmed(purpose, argument)  the question that was asked for `purpose` was answered with yes
// editsAnswered(answer, purpose, argument)  see Questions
Item {
    id: messages

    property var manager
    property var watch
    property string programName: ""
    property string modelName: ""
    property bool logSuccesses: false
    property var successes: []
    readonly property string serialBusy: "Please wait for the PBL version to be obtained. Serial is working. Please wait."
    readonly property string serialFree: "Serial is operation completed. Please processed with other tasks."

    signal logged(string text, string tag)
    signal confirmed(string purpose, var argument)
    signal editsAnswered(string answer, string purpose, var argument)

    function refuse(reason) {
        errorBox.show(reason);
    }

    function warnAboutModel(text) {
        logged(text, "WARNING");
        questions.warn(qsTr("Check the lidar's model"), text);
    }

    function showAbout() { aboutBox.open(); }
    function askSave(names, waiting) { questions.askSave(names, waiting); }
    function askRestart() { questions.askRestart(); }
    function askReset() { questions.askReset(); }
    function askNextAddress(address) { questions.askNextAddress(address); }
    function askClose(sending) { questions.askClose(sending); }
    function askUnkept(purpose, problem) { questions.askUnkept(purpose, problem); }
    function askCloseApplying(begun) { questions.askCloseApplying(begun); }
    function askEdits(purpose, argument) { questions.askEdits(purpose, argument); }

    function showError() {
        const text = manager.errorMessage;
        if (text === "") {
            console.log("errorMessageChanged: no message");
            return;
        }
        logged(text, "ERROR");
        watch.Look();
        const remedy = facts.Remedy();
        const reason = remedy === "" && Advice.isOfConnecting(text) ? watch.failure : "";
        errorBox.show(reason === "" ? text : text + "\n" + reason, remedy);
        manager.setErrorMsg("");
    }

    function showSuccess() {
        const text = manager.successMessage;
        if (text === "") {
            console.log("successMessageChanged: no message");
            return;
        }
        logged(text, "SUCCESS");
        if (!logSuccesses) {
            successes = successes.concat([text]);
            Qt.callLater(showSuccesses);
        }
        manager.setSuccessMsg("");
    }

    // What one action of the user brought, in one notice: saving a page reports every command.
    function showSuccesses() {
        const text = successes.join("\n");
        notices.show(text, Advice.forSuccess(text));
        successes = [];
    }

    function tellOfSerialLine(busy) {
        if (busy) {
            notices.keep(serialBusy);
        } else {
            notices.drop(serialBusy);
            notices.show(serialFree);
        }
    }

    Connections {
        target: messages.manager
        function onErrorMessageChanged() { messages.showError(); }
        function onSuccessMessageChanged() { messages.showSuccess(); }
        function onIsGetPBLVersionChanged() { messages.tellOfSerialLine(messages.manager.isGetPBLVersion); }
    }

    Connections {
        target: messages.watch
        function onCertificateAsked(lidar) { questions.askTrust(lidar); }
    }

    SuccessInfoWindow {
        id: notices

        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.gapWide
        width: Math.min(Theme.dialogWidth, parent.width - 2 * Theme.gapWide)
    }

    ManagerFacts {
        id: facts

        manager: messages.manager
    }

    ErrorInfoWindow { id: errorBox }
    Questions {
        id: questions

        manager: messages.manager
        onConfirmed: {
            if (purpose === "trust")
                messages.watch.Trust(argument);
            else
                messages.confirmed(purpose, argument);
        }
        onEditsAnswered: messages.editsAnswered(answer, purpose, argument)
    }
    AboutWindow {
        id: aboutBox

        applicationName: messages.programName
        details: [qsTr("Model in use: %1").arg(messages.modelName)].concat(facts.tables, messages.watch.security || [])
    }
}
