import QtQuick 2.15
import "../theme"
import "ValueHint.js" as ValueHint

// The editor of a plain value: a text field, and beside it what the value has to look like.
FocusScope {
    id: editor

    property var row
    readonly property var leaf: row.leaf

    // Shows the variable's present text, unless the user is in the middle of typing another.
    function show() {
        if (!field.typing)
            field.revert();
    }

    function commit() {
        if (!field.typing)
            return;
        field.typing = false;
        if (field.text !== field.value)
            row.edit(1, field.text);
    }

    implicitHeight: Theme.controlHeight

    DefaultTextField {
        id: field

        objectName: "field_" + editor.row.level1 + "_" + editor.row.level2 + "_" + editor.row.level3
        width: Theme.fieldWidth
        anchors.verticalCenter: parent.verticalCenter
        focus: true
        enabled: editor.row.editable
        value: editor.leaf.current_val
        pending: editor.row.pending || (typing && text !== value)
        problem: pending ? ValueHint.problem(editor.leaf, text) : ""
        hint: editor.leaf.hint || ""
        label: editor.row.caption
        onCommitted: editor.row.edit(1, text)
    }

    RowNote {
        anchors.left: field.right
        anchors.leftMargin: Theme.gapWide
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        problem: field.problem
        hint: field.hint
        pending: field.pending
    }
}
