import QtQuick 2.15
import "../controls"
import "../theme"

// A question or a warning. Set title, message and advice, or call ask(); `accepted` and `rejected`
// bring the answer, and `purpose` tells the asker which question was answered.
//
// ask(purpose, title, message, advice, acceptText)  opens the box with a way out
// warn(title, message, advice)                      opens it with "OK" alone
DialogFrame {
    property string purpose: ""

    function ask(newPurpose, newTitle, newMessage, newAdvice, newAcceptText) {
        purpose = newPurpose;
        title = newTitle;
        message = newMessage;
        advice = newAdvice;
        acceptText = newAcceptText === undefined ? qsTr("Continue") : newAcceptText;
        cancellable = true;
        open();
    }

    function warn(newTitle, newMessage, newAdvice) {
        purpose = "";
        title = newTitle;
        message = newMessage;
        advice = newAdvice;
        acceptText = qsTr("OK");
        cancellable = false;
        open();
    }

    objectName: "messageWindow"
    title: qsTr("Please confirm")
    acceptText: qsTr("Continue")
    cancellable: true
    iconSource: "../icons/warning.svg"
    tone: Theme.warningColor
}
