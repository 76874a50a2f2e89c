import QtQuick 2.15
import "../theme"

// Something failed.
NoticeWindow {
    objectName: "errorInfoWindow"
    title: qsTr("Something went wrong")
    defaultAdvice: qsTr("The log below lists every step. Put right what it names and try again.")
    iconSource: "../icons/error.svg"
    tone: Theme.errorColor
}
