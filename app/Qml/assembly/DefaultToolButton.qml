import QtQuick 2.15
import QtQuick.Controls.impl 2.15
import QtQuick.Templates 2.15 as T
import "../theme"

// A small flat button with an icon, a text or both. Set `icon.source` (an SVG, drawn in one colour)
// and `label`, the name for assistive technology; `hint` is the tooltip and falls back on `label`.
T.ToolButton {
    id: control

    property string hint: ""
    property string label: ""

    implicitWidth: Math.max(implicitHeight, contentItem.implicitWidth + leftPadding + rightPadding)
    implicitHeight: Theme.controlHeight
    padding: Theme.gapTiny
    spacing: Theme.gap
    hoverEnabled: true
    activeFocusOnTab: true
    focusPolicy: Qt.StrongFocus
    font: Theme.bodyFont
    icon.width: Theme.iconSize
    icon.height: Theme.iconSize
    icon.color: !enabled ? Theme.disabledTextColor
              : checked ? Theme.accentColor : Theme.textColor

    Accessible.name: label.length > 0 ? label : text
    Accessible.description: hint

    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: IconLabel {
        spacing: control.spacing
        mirrored: control.mirrored
        display: control.display
        icon: control.icon
        text: control.text
        font: control.font
        color: control.icon.color
    }

    background: Rectangle {
        radius: Theme.radius
        color: control.down ? Theme.controlPressedColor
             : control.hovered && control.enabled ? Theme.controlHoverColor : "transparent"

        FocusRing { shown: control.visualFocus }
    }

    DefaultToolTip {
        wanted: control.hovered || control.visualFocus
        text: control.hint.length > 0 ? control.hint : control.label
    }
}
