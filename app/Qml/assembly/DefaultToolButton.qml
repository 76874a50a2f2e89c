import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../controls"
import "../theme"

// A small flat button with an icon, a text or both. `icon.source` is an SVG, drawn in one colour; `label`
// is the name for assistive technology; `hint` is the tooltip and falls back on `label`.
T.ToolButton {
    id: control

    property string hint: ""
    // What it drops down is shown: no place for a tooltip.
    property bool opened: false
    property string label: ""
    property int iconSize: Theme.iconSize
    readonly property color ink: !enabled ? Theme.disabledTextColor
                               : checked ? Theme.accentColor : Theme.textColor

    implicitWidth: Math.max(implicitHeight, contentItem.implicitWidth + leftPadding + rightPadding)
    implicitHeight: Theme.controlHeight
    padding: Theme.gapTiny
    spacing: Theme.gap
    hoverEnabled: true
    activeFocusOnTab: true
    focusPolicy: Qt.StrongFocus
    font: Theme.bodyFont

    Accessible.name: label.length > 0 ? label : text
    Accessible.description: hint

    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: Item {
        implicitWidth: inner.implicitWidth
        implicitHeight: inner.implicitHeight

        Row {
            id: inner

            anchors.centerIn: parent
            spacing: control.spacing

            Icon {
                anchors.verticalCenter: parent.verticalCenter
                visible: source.toString().length > 0
                source: control.icon.source
                size: control.iconSize
                color: control.ink
            }
            PlainText {
                anchors.verticalCenter: parent.verticalCenter
                visible: text.length > 0
                text: control.text
                font: control.font
                color: control.ink
            }
        }
    }

    background: Rectangle {
        radius: Theme.radius
        color: control.down ? Theme.controlPressedColor
             : control.hovered && control.enabled ? Theme.controlHoverColor : "transparent"

        FocusRing { shown: control.visualFocus }
    }

    DefaultToolTip {
        wanted: (control.hovered || control.visualFocus) && !control.opened
        text: control.hint.length > 0 ? control.hint : control.label
    }
}
