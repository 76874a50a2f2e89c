import QtQuick 2.15
import Tevron 1.0
import "../theme"

// The editor of a plain value: a text field, and beside it what the value has to look like.
FocusScope {
    id: editor

    property var row
    focus: true
    readonly property var leaf: row.leaf

    // Hands over what the user typed. The field shows what came of it.
    function handOver() {
        field.typing = false;
        row.edit(1, field.text);
        field.revert();
    }

    function commit() {
        if (field.typing && field.text !== field.value)
            handOver();
    }

    implicitHeight: Theme.controlHeight

    DefaultTextField {
        id: field

        readonly property var verdict: pending ? InputRules.Judge(editor.leaf, text) : ({})

        objectName: "field_" + editor.row.place
        width: Theme.fieldWidth
        anchors.verticalCenter: parent.verticalCenter
        focus: true
        enabled: editor.row.editable
        value: editor.row.unread ? "" : editor.leaf.current_val
        placeholderText: editor.row.unread ? Theme.unreadText : ""
        stale: editor.row.stale
        pending: editor.row.pending || (typing && text !== value)
        problem: verdict.rounded ? "" : verdict.text || ""
        hint: editor.row.hint
        label: editor.row.caption
        onCommitted: editor.handOver()
    }

    RowNote {
        anchors.left: field.right
        anchors.leftMargin: Theme.gapWide
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        row: editor.row
        problem: field.problem
        rounding: field.verdict.rounded ? field.verdict.text : ""
        pending: field.pending
    }
}
