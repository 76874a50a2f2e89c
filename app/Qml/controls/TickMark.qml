import QtQuick 2.15
import "../theme"

// The mark of something that can be chosen, for a row that takes clicks and keys itself.
//
// on  it is chosen
Rectangle {
    id: mark

    property bool on: false

    implicitWidth: Theme.smallIconSize
    implicitHeight: Theme.smallIconSize
    radius: Theme.radiusSmall
    color: on && enabled ? Theme.accentColor : Theme.wellColor
    border.width: Theme.hairline
    border.color: on && enabled ? Theme.accentColor : Theme.outlineHoverColor

    Icon {
        anchors.centerIn: parent
        visible: mark.on
        size: Theme.lampSize
        source: "../icons/success.svg"
        color: mark.enabled ? Theme.accentTextColor : Theme.disabledTextColor
    }
}
