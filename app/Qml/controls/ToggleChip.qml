import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../theme"

// A small switch that is its own text: bright with an outline while it is on.
T.AbstractButton {
    id: chip

    property color ink: Theme.textColor
    property string label: ""

    implicitWidth: contentItem.implicitWidth + 2 * Theme.gap
    implicitHeight: Theme.smallControlHeight
    checkable: true
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus

    Accessible.role: Accessible.CheckBox
    Accessible.name: label.length > 0 ? label : text
    Accessible.checked: checked

    Keys.onReturnPressed: {
        toggle();
        toggled();
    }
    Keys.onEnterPressed: {
        toggle();
        toggled();
    }

    contentItem: PlainText {
        text: chip.text
        font: Theme.captionFont
        color: chip.checked ? chip.ink : Theme.disabledTextColor
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
    }

    background: Rectangle {
        radius: height / 2
        color: chip.hovered ? Theme.controlHoverColor
             : chip.checked ? Theme.controlColor : "transparent"
        border.width: Theme.hairline
        border.color: chip.checked ? Theme.outlineHoverColor : Theme.outlineColor

        FocusRing {
            shown: chip.visualFocus
            radius: height / 2
        }
    }
}
