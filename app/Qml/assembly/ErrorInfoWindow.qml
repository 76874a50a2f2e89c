import QtQuick 2.15
import "../controls"
import "../theme"
import "Advice.js" as Advice

// Something failed.
NoticeWindow {
    objectName: "errorInfoWindow"
    title: qsTr("Something went wrong")
    adviceFor: message => Advice.forMessage(message)
    iconSource: "../icons/error.svg"
    tone: Theme.errorColor
}
