import QtQuick 2.15
import "../theme"

// The outline of the control that has the keyboard, drawn around it so that it never hides content.
Rectangle {
    property bool shown: false

    anchors.fill: parent
    anchors.margins: -Theme.focusWidth
    visible: shown
    radius: Theme.radius + Theme.focusWidth
    color: "transparent"
    border.width: Theme.focusWidth
    border.color: Theme.focusColor
}
