import QtQuick 2.15
import "../theme"

// The connection lamp: green while `on`, red otherwise. The text beside it says the same in words.
Row {
    id: lamp

    property bool on: false
    property string connectedText: qsTr("Connected")
    property string disconnectedText: qsTr("Not connected")
    readonly property string text: on ? connectedText : disconnectedText
    readonly property alias color: light.color

    spacing: Theme.gap

    Accessible.role: Accessible.Indicator
    Accessible.name: text

    Rectangle {
        id: light

        anchors.verticalCenter: parent.verticalCenter
        width: Theme.lampSize
        height: Theme.lampSize
        radius: Theme.lampSize / 2
        color: lamp.on ? Theme.lampOnColor : Theme.lampOffColor
        border.width: Theme.hairline
        border.color: Theme.trenchColor
    }

    PlainText {
        anchors.verticalCenter: parent.verticalCenter
        text: lamp.text
    }
}
