import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../theme"

// A push button. `emphasised` is for the one action of a screen that matters most; `dangerous` for
// one that cannot be taken back. `hint` is the tooltip.
T.Button {
    id: control

    property bool emphasised: false
    property bool dangerous: false
    property string hint: ""

    implicitWidth: Math.max(Theme.buttonWidth, contentItem.implicitWidth + leftPadding + rightPadding)
    implicitHeight: Theme.controlHeight
    leftPadding: Theme.gapWide
    rightPadding: Theme.gapWide
    hoverEnabled: true
    font: emphasised ? Theme.boldFont : Theme.bodyFont

    Accessible.name: text
    Accessible.description: hint

    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: PlainText {
        text: control.text
        font: control.font
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
        color: !control.enabled ? Theme.disabledTextColor
             : control.emphasised ? Theme.accentTextColor
             : control.dangerous ? Theme.errorColor : Theme.textColor
    }

    background: Rectangle {
        readonly property bool filled: control.emphasised && control.enabled

        radius: Theme.radius
        color: !control.enabled ? Theme.windowColor
             : control.down ? (filled ? Theme.accentPressedColor : Theme.controlPressedColor)
             : control.hovered ? (filled ? Theme.accentHoverColor : Theme.controlHoverColor)
             : filled ? Theme.accentColor
             : control.dangerous ? Theme.windowColor : Theme.controlColor
        border.width: filled ? 0 : Theme.hairline
        border.color: control.dangerous && control.enabled ? Theme.errorColor
                    : control.hovered ? Theme.outlineHoverColor : Theme.outlineColor

        FocusRing {
            shown: control.visualFocus
            border.color: parent.filled ? Theme.textColor : Theme.focusColor
        }
    }

    DefaultToolTip {
        wanted: control.hovered || control.visualFocus
        text: control.hint
    }
}
