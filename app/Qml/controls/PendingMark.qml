import QtQuick 2.15
import "../theme"

// The stripe at the left edge of a control whose value was edited and is not saved yet.
Rectangle {
    property bool shown: false

    anchors.left: parent.left
    anchors.top: parent.top
    anchors.bottom: parent.bottom
    anchors.margins: Theme.hairline
    width: Theme.gapTiny
    visible: shown
    radius: Theme.radiusSmall
    color: Theme.pendingColor
}
