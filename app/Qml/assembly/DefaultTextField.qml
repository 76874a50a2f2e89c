import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../controls"
import "../theme"

// A line of text that follows `value` until the user types, and reports what was typed.
//
// value    what the source of the field holds; shown whenever it changes, unless the user is in the
//          middle of typing something else
// pending  the text was changed here and is not saved yet: marked at the left edge
// stale    nothing says that the source still holds its value
// problem  what is wrong with the text, or empty; shown as a red outline and in the tooltip
// isNoted  problem and hint stand beside the field, which needs no tooltip
// hint     the tooltip: unit, range, format
// unit     a short suffix shown inside the field
// label    the name that assistive technology reads
// committed(text)  Enter was pressed or the field was left, and the text is not `value`
T.TextField {
    id: field

    property string value: ""
    property bool pending: false
    property bool stale: false
    property string problem: ""
    property string hint: ""
    property bool isNoted: false
    property string unit: ""
    property string label: ""

    signal committed(string text)

    // Gives the field its value back; what the user typed is lost.
    function revert() {
        text = value;
    }

    property bool typing: false

    onTextEdited: typing = true
    onValueChanged: if (!typing) text = value
    onEditingFinished: {
        typing = false;
        if (text !== value)
            committed(text);
    }
    onActiveFocusChanged: if (activeFocus && !readOnly) selectAll()
    Component.onCompleted: if (value.length > 0) text = value

    Keys.onEscapePressed: {
        event.accepted = text !== value;
        typing = false;
        revert();
    }

    implicitWidth: Theme.fieldWidth
    implicitHeight: Theme.controlHeight
    leftPadding: Theme.fieldPadding
    rightPadding: Theme.fieldPadding + (unit.length > 0 ? unitText.width + Theme.gap : 0)
    verticalAlignment: TextInput.AlignVCenter
    selectByMouse: true
    hoverEnabled: true
    font: Theme.bodyFont
    // A value that cannot be changed is still there to be read.
    color: stale ? Theme.disabledTextColor : enabled ? Theme.textColor : Theme.quietTextColor
    selectionColor: Theme.selectionColor
    selectedTextColor: Theme.textColor
    placeholderTextColor: Theme.quietTextColor
    activeFocusOnTab: true

    Accessible.role: Accessible.EditableText
    Accessible.name: label.length > 0 ? label : placeholderText
    Accessible.description: problem.length > 0 ? problem : hint

    background: Rectangle {
        radius: Theme.radius
        color: field.enabled && !field.readOnly ? Theme.wellColor : Theme.windowColor
        border.width: Theme.hairline
        border.color: field.problem.length > 0 ? Theme.errorColor
                    : field.hovered && field.enabled ? Theme.outlineHoverColor : Theme.outlineColor

        PendingMark { shown: field.pending }
        FocusRing { shown: field.activeFocus }
    }

    PlainText {
        anchors.verticalCenter: parent.verticalCenter
        anchors.left: parent.left
        anchors.leftMargin: field.leftPadding
        width: field.availableWidth
        visible: field.text.length === 0 && field.preeditText.length === 0
        text: field.placeholderText
        font: field.font
        color: field.placeholderTextColor
        elide: Text.ElideRight
    }

    PlainText {
        id: unitText

        anchors.verticalCenter: parent.verticalCenter
        anchors.right: parent.right
        anchors.rightMargin: Theme.fieldPadding
        text: field.unit
        font: Theme.captionFont
        color: Theme.quietTextColor
    }

    DefaultToolTip {
        // Never in the way of what is being typed.
        wanted: field.hovered && !field.activeFocus && !field.isNoted
        text: field.problem.length > 0 ? field.problem : field.hint
    }
}
