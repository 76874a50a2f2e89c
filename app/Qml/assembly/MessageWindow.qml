import QtQuick 2.15
import "../controls"
import "../theme"

// A question or a warning. Set title, message and advice, or call ask(); `accepted` and `rejected`
// bring the answer, and `purpose` tells the asker which question was answered.
//
// ask(purpose, title, message, advice, acceptText)  opens the box with a way out
// warnAndAsk(purpose, title, message, advice, acceptText, rejectText)  the same for what cannot be
//                                                   taken back: the way out has the keyboard
// warn(title, message, advice)                      opens it with "OK" alone
DialogFrame {
    property string purpose: ""

    function ask(newPurpose, newTitle, newMessage, newAdvice, newAcceptText) {
        purpose = newPurpose;
        title = newTitle;
        message = newMessage;
        advice = newAdvice;
        acceptText = newAcceptText === undefined ? qsTr("Continue") : newAcceptText;
        rejectText = qsTr("Cancel");
        cancellable = true;
        dangerous = false;
        open();
    }

    function warnAndAsk(newPurpose, newTitle, newMessage, newAdvice, newAcceptText, newRejectText) {
        ask(newPurpose, newTitle, newMessage, newAdvice, newAcceptText);
        rejectText = newRejectText;
        dangerous = true;
    }

    function warn(newTitle, newMessage, newAdvice) {
        purpose = "";
        title = newTitle;
        message = newMessage;
        advice = newAdvice;
        acceptText = qsTr("OK");
        cancellable = false;
        dangerous = false;
        open();
    }

    objectName: "messageWindow"
    title: qsTr("Please confirm")
    acceptText: qsTr("Continue")
    cancellable: true
    iconSource: "../icons/warning.svg"
    tone: Theme.warningColor
}
