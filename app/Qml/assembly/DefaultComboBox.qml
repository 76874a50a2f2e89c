import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../controls"
import "../theme"

// A choice from a list of texts. Give `model` and bind `chosenIndex`; `chosen` reports the user's
// pick, and the box follows `chosenIndex` again whenever that changes.
//
// chosenIndex    the entry that the source holds; -1: none
// pending        changed here and not saved yet
// stale          nothing says that the source still holds its entry
// hint, label    tooltip, and the name that assistive technology reads
// chosen(index)  the user picked another entry
T.ComboBox {
    id: control

    property int chosenIndex: -1
    property bool pending: false
    property bool stale: false
    property string hint: ""
    property string label: ""

    signal chosen(int index)

    // Shows what the source holds again, after a pick that was refused.
    function revert() {
        currentIndex = chosenIndex;
    }

    onChosenIndexChanged: revert()
    onModelChanged: revert()
    onActivated: if (index !== chosenIndex) chosen(index)
    Component.onCompleted: revert()

    implicitWidth: Theme.fieldWidth
    implicitHeight: Theme.controlHeight
    leftPadding: Theme.fieldPadding
    rightPadding: Theme.iconSize + Theme.gap
    hoverEnabled: true
    font: Theme.bodyFont

    Accessible.name: label
    Accessible.description: hint

    delegate: T.ItemDelegate {
        id: entry

        width: ListView.view ? ListView.view.width : implicitWidth
        implicitHeight: Theme.controlHeight
        leftPadding: Theme.fieldPadding
        rightPadding: Theme.fieldPadding
        hoverEnabled: true
        highlighted: control.highlightedIndex === index
        text: control.textRole ? (Array.isArray(control.model) ? modelData[control.textRole]
                                                               : model[control.textRole])
                               : modelData
        font: control.font

        Accessible.name: text

        contentItem: PlainText {
            text: entry.text
            font: entry.font
            color: entry.highlighted ? Theme.accentTextColor : Theme.textColor
            verticalAlignment: Text.AlignVCenter
            elide: Text.ElideRight
        }
        background: Rectangle {
            color: entry.highlighted ? Theme.accentColor : "transparent"
        }
    }

    indicator: Icon {
        source: "../icons/chevron.svg"
        size: 3 * Theme.grid
        x: control.width - width - Theme.gap
        y: (control.height - height) / 2
        color: control.enabled ? Theme.quietTextColor : Theme.disabledTextColor
    }

    contentItem: PlainText {
        text: control.displayText
        font: control.font
        color: !control.enabled ? Theme.disabledTextColor
             : control.stale ? Theme.quietTextColor : Theme.textColor
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }

    background: Rectangle {
        radius: Theme.radius
        color: !control.enabled ? Theme.windowColor
             : control.pressed ? Theme.controlPressedColor
             : control.hovered ? Theme.controlHoverColor : Theme.controlColor
        border.width: Theme.hairline
        border.color: control.hovered ? Theme.outlineHoverColor : Theme.outlineColor

        PendingMark { shown: control.pending }
        FocusRing { shown: control.visualFocus }
    }

    popup: T.Popup {
        y: control.height + Theme.radiusSmall
        width: control.width
        implicitHeight: Math.min(contentItem.implicitHeight + topPadding + bottomPadding,
                                 10 * Theme.controlHeight)
        padding: Theme.hairline
        margins: Theme.gap

        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: control.delegateModel
            currentIndex: control.highlightedIndex
            boundsBehavior: Flickable.StopAtBounds
            T.ScrollBar.vertical: DefaultScrollBar {}
        }
        background: Rectangle {
            color: Theme.trenchColor
            border.width: Theme.hairline
            border.color: Theme.outlineHoverColor
            radius: Theme.radiusSmall
        }
    }

    DefaultToolTip {
        wanted: (control.hovered || control.visualFocus) && !control.popup.visible
        text: control.hint
    }
}
