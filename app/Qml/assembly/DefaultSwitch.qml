import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../controls"
import "../theme"

// An on/off switch that follows `value` and reports what the user wants; it never decides itself.
//
// value         the state that the source holds
// unknown       nobody knows the state: the switch stands in the middle
// stale         nothing says that the source still holds it
// pending       changed here and not saved yet
// hint, label   tooltip, and the name that assistive technology reads
// switched(on)  the user moved it
T.Switch {
    id: control

    property bool value: false
    property bool unknown: false
    property bool stale: false
    property bool pending: false
    readonly property bool vivid: enabled && !stale
    property string hint: ""
    property string label: ""

    signal switched(bool on)

    onValueChanged: checked = value
    onToggled: switched(checked)
    Component.onCompleted: checked = value

    implicitWidth: (text.length > 0 ? contentItem.implicitWidth : indicator.implicitWidth)
                   + leftPadding + rightPadding
    implicitHeight: Theme.controlHeight
    spacing: Theme.gap
    padding: Theme.gapTiny
    hoverEnabled: true
    font: Theme.bodyFont

    Accessible.name: label.length > 0 ? label : text
    Accessible.description: hint

    Keys.onReturnPressed: {
        toggle();
        toggled();
    }
    Keys.onEnterPressed: {
        toggle();
        toggled();
    }

    indicator: Rectangle {
        x: control.leftPadding
        y: (control.height - height) / 2
        implicitWidth: 10 * Theme.grid
        implicitHeight: 5 * Theme.grid
        radius: height / 2
        color: !control.vivid ? Theme.windowColor
             : control.checked && !control.unknown ? Theme.accentColor : Theme.controlColor
        border.width: Theme.hairline
        border.color: control.hovered ? Theme.outlineHoverColor : Theme.outlineColor

        Rectangle {
            x: control.unknown ? (parent.width - width) / 2
             : control.checked ? parent.width - width - inset : inset
            y: inset
            readonly property int inset: Theme.radiusSmall
            width: parent.height - 2 * inset
            height: width
            radius: width / 2
            color: control.vivid ? Theme.textColor : Theme.disabledTextColor

            Behavior on x { NumberAnimation { duration: Theme.fadeMs } }
        }

        FocusRing {
            shown: control.visualFocus
            radius: height / 2
        }
    }

    contentItem: PlainText {
        leftPadding: control.indicator.width + control.spacing
        text: control.text
        font: control.font
        color: control.vivid ? Theme.textColor : Theme.disabledTextColor
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }

    background: Item {
        PendingMark {
            shown: control.pending
            anchors.leftMargin: -Theme.gapTiny
        }
    }

    DefaultToolTip {
        wanted: control.hovered || control.visualFocus
        text: control.hint
    }
}
