import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../theme"

// A scroll bar that is there while there is something to scroll.
T.ScrollBar {
    id: control

    implicitWidth: Theme.scrollBarWidth + leftPadding + rightPadding
    implicitHeight: Theme.scrollBarWidth + topPadding + bottomPadding
    padding: Theme.hairline
    visible: policy !== T.ScrollBar.AlwaysOff && size < 1.0
    minimumSize: orientation === Qt.Horizontal ? height / width : width / height
    hoverEnabled: true

    contentItem: Rectangle {
        implicitWidth: Theme.scrollBarWidth
        implicitHeight: Theme.scrollBarWidth
        radius: width / 2
        color: control.pressed ? Theme.accentColor
             : control.hovered ? Theme.outlineHoverColor : Theme.outlineColor
    }
}
