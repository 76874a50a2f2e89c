import QtQuick 2.15
import "../controls"
import "../theme"

// One command of a list: a click puts it into the fields; it can be sent again, and copied or
// removed.
//
// title      its time or its name; text   the command with its payload
Item {
    id: entry

    property string title: ""
    property string text: ""
    property bool current: false
    property bool removable: false

    signal recalled()
    signal sentAgain()
    signal copied()
    signal removed()

    implicitHeight: Theme.smallControlHeight

    Accessible.role: Accessible.Row
    Accessible.name: title + " " + text

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
        text: entry.title + "  " + entry.text
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
            label: qsTr("Send %1 again").arg(entry.text)
            onClicked: entry.sentAgain()
        }
        DefaultToolButton {
            objectName: entry.objectName + "_copy"
            height: entry.height
            visible: !entry.removable
            font: Theme.captionFont
            text: qsTr("Copy")
            label: qsTr("Copy %1").arg(entry.text)
            onClicked: entry.copied()
        }
        DefaultToolButton {
            objectName: entry.objectName + "_remove"
            height: entry.height
            visible: entry.removable
            font: Theme.captionFont
            text: qsTr("Remove")
            label: qsTr("Remove the favourite %1").arg(entry.title)
            onClicked: entry.removed()
        }
    }
}
