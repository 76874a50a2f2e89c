import QtQuick 2.15
import Tevron 1.0
import "../controls"
import "../theme"
import "Advice.js" as Advice

// Something failed.
NoticeWindow {
    objectName: "errorInfoWindow"
    title: qsTr("Something went wrong")
    adviceFor: message => [ConsoleWords.RefusalIn(message), Advice.forMessage(message)].join(" ").trim()
    iconSource: "../icons/error.svg"
    tone: Theme.errorColor
}
