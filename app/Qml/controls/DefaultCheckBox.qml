import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../theme"

// A check box with its text; used where several things can be chosen at once.
T.CheckBox {
    id: control

    property string hint: ""

    implicitWidth: contentItem.implicitWidth + leftPadding + rightPadding
    implicitHeight: Theme.controlHeight
    padding: Theme.gapTiny
    spacing: Theme.gap
    hoverEnabled: true
    font: Theme.bodyFont

    Accessible.name: text
    Accessible.description: hint

    Keys.onReturnPressed: {
        toggle();
        toggled();
        clicked();
    }
    Keys.onEnterPressed: {
        toggle();
        toggled();
        clicked();
    }

    indicator: Rectangle {
        x: control.leftPadding
        y: (control.height - height) / 2
        implicitWidth: 4 * Theme.grid
        implicitHeight: 4 * Theme.grid
        radius: Theme.radiusSmall
        color: control.checked && control.enabled ? Theme.accentColor : Theme.wellColor
        border.width: Theme.hairline
        border.color: control.hovered ? Theme.outlineHoverColor : Theme.outlineColor

        PlainText {
            anchors.centerIn: parent
            visible: control.checked
            text: "\u2713"
            font: Theme.captionFont
            color: control.enabled ? Theme.accentTextColor : Theme.disabledTextColor
        }

        FocusRing { shown: control.visualFocus }
    }

    contentItem: PlainText {
        leftPadding: control.indicator.width + control.spacing
        text: control.text
        font: control.font
        color: control.enabled ? Theme.textColor : Theme.disabledTextColor
        verticalAlignment: Text.AlignVCenter
    }

    DefaultToolTip {
        wanted: control.hovered || control.visualFocus
        text: control.hint
    }
}
