import QtQuick 2.15
import Tevron 1.0
import "../theme"

// The editor of a value that can be switched off: a switch, and a text field for the value while it
// is on, unless it can only be 1 then.
FocusScope {
    id: editor

    property var row
    readonly property var leaf: row.leaf
    readonly property bool on: leaf.switch_index !== "0"
    readonly property bool hasField: leaf.range_max > 1
    readonly property bool typed: field.typing && field.text !== field.value
    readonly property var verdict: (row.pending || typed) && toggle.checked && hasField
                                   ? InputRules.Judge(leaf, field.text) : ({})

    // Hands over what the user typed. The field shows what came of it.
    function handOver() {
        field.typing = false;
        row.edit(1, field.text);
        field.revert();
    }

    function commit() {
        if (typed)
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

    focus: true
    implicitHeight: Theme.controlHeight

    DefaultSwitch {
        id: toggle

        objectName: "switch_" + editor.row.place
        anchors.verticalCenter: parent.verticalCenter
        focus: true
        value: editor.on
        unknown: editor.row.unread
        stale: editor.row.stale
        pending: editor.row.pending
        label: editor.row.caption
        // Beside the field there is no room for a word.
        text: editor.hasField ? "" : editor.row.valueText
        onSwitched: editor.switchTo(on)
    }

    DefaultTextField {
        id: field

        objectName: "field_" + editor.row.place
        anchors.left: toggle.right
        anchors.leftMargin: Theme.gap
        anchors.right: parent.right
        visible: editor.hasField
        enabled: toggle.checked
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
