import QtQuick 2.15
import "../theme"

// A line of the serial screen with a text field. What was typed stays until it is what the lidar
// holds, or taken back.
//
// held    what the lidar holds; empty when that is not known
// check   tells of a text why it cannot be set, or nothing
// text    what stands in the field
// sound   it can be set
LumoField {
    id: line

    property string held: ""
    property var check: text => ""
    property int fieldWidth: Theme.fieldWidth
    property var typed: null
    readonly property string text: field.text
    readonly property bool sound: !enabled || (text.length > 0 && problem === "")

    function undo() {
        typed = null;
        field.typing = false;
        field.revert();
    }

    edited: typed !== null && typed !== held
    was: held
    problem: enabled && text.length > 0 ? check(text) : ""
    onHeldChanged: if (typed === held) typed = null
    onUndone: undo()

    DefaultTextField {
        id: field

        objectName: line.name
        width: line.fieldWidth
        value: line.typed !== null ? line.typed : line.held
        placeholderText: line.held === "" ? Theme.unreadText : ""
        pending: line.edited
        stale: line.stale && !line.edited
        problem: line.problem
        label: line.label
        onTextEdited: line.typed = text
    }
}
