import QtQuick 2.15
import Tevron 1.0
import "../theme"

// The editor of a value that can be switched off: a switch, and a text field for the value while it
// is on.
FocusScope {
    id: editor

    property var row
    focus: true
    readonly property var leaf: row.leaf
    readonly property bool on: leaf.switch_index !== "0"

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

    // Switching on needs the lidar, which holds the value to come back to; switching off always
    // counts, and leaves the value 0.
    function switchTo(wanted) {
        if (row.manager.IsConnected)
            row.edit(2, wanted ? "1" : "0");
        if (!wanted) {
            field.text = "0";
            handOver();
        }
        toggle.checked = on;
    }

    implicitHeight: Theme.controlHeight

    DefaultSwitch {
        id: toggle

        objectName: "switch_" + editor.row.place
        anchors.verticalCenter: parent.verticalCenter
        focus: true
        enabled: editor.row.editable
        value: editor.on
        unknown: editor.row.unread
        pending: editor.row.pending
        label: editor.row.caption
        hint: editor.row.hint
        onSwitched: editor.switchTo(on)
    }

    DefaultTextField {
        id: field

        readonly property var verdict: pending && toggle.checked ? InputRules.Judge(editor.leaf, text) : ({})

        objectName: "field_" + editor.row.place
        anchors.left: toggle.right
        anchors.leftMargin: Theme.gapWide
        anchors.verticalCenter: parent.verticalCenter
        width: Theme.fieldWidth - toggle.width - Theme.gapWide
        enabled: editor.row.editable && toggle.checked
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
