import QtQuick 2.15
import Tevron 1.0
import "../theme"

// The editor of a plain value: a text field.
FocusScope {
    id: editor

    property var row
    readonly property var leaf: row.leaf
    readonly property bool typed: field.typing && field.text !== field.value
    readonly property var verdict: row.pending || typed ? InputRules.Judge(leaf, field.text) : ({})

    // Hands over what the user typed. The field shows what came of it.
    function handOver() {
        field.typing = false;
        row.edit(1, field.text);
        field.revert();
    }

    function drop() {
        field.typing = false;
        field.revert();
    }

    function commit() {
        if (typed)
            handOver();
    }

    focus: true
    implicitHeight: Theme.controlHeight

    DefaultTextField {
        id: field

        objectName: "field_" + editor.row.place
        width: parent.width
        focus: true
        value: editor.row.unread ? "" : editor.leaf.current_val
        placeholderText: editor.row.unread ? Theme.unreadText : ""
        stale: editor.row.stale
        pending: editor.row.pending || editor.typed
        problem: editor.verdict.rounded ? "" : editor.verdict.text || ""
        hint: editor.leaf.hint || ""
        isNoted: true
        label: editor.row.caption
        onCommitted: editor.handOver()
    }
}
