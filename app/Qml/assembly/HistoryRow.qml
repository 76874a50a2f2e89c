import QtQuick 2.15
import "../controls"
import "../theme"

// One entry of the command history: a click puts it into the fields; it can be sent again and
// copied.
Item {
    id: entry

    property string time: ""
    property string text: ""
    property bool current: false

    signal recalled()
    signal sentAgain()
    signal copied()

    implicitHeight: Theme.smallControlHeight

    Accessible.role: Accessible.Row
    Accessible.name: time + " " + text

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusSmall
        color: entry.current || area.containsMouse ? Theme.controlColor : "transparent"
    }

    MouseArea {
        id: area

        anchors.fill: parent
        hoverEnabled: true
        onClicked: entry.recalled()
    }

    PlainText {
        anchors.left: parent.left
        anchors.leftMargin: Theme.gap
        anchors.right: buttons.left
        anchors.verticalCenter: parent.verticalCenter
        text: entry.time.substring(entry.time.indexOf(" ") + 1) + "  " + entry.text
        font: Theme.codeFont
        elide: Text.ElideRight
    }

    Row {
        id: buttons

        anchors.right: parent.right
        anchors.rightMargin: Theme.gapWide
        anchors.verticalCenter: parent.verticalCenter

        DefaultToolButton {
            objectName: entry.objectName + "_send"
            height: entry.height
            font: Theme.captionFont
            text: qsTr("Send")
            hint: qsTr("Send this command again")
            onClicked: entry.sentAgain()
        }
        DefaultToolButton {
            objectName: entry.objectName + "_copy"
            height: entry.height
            font: Theme.captionFont
            text: qsTr("Copy")
            hint: qsTr("Copy this command to the clipboard")
            onClicked: entry.copied()
        }
    }
}
