import QtQuick 2.15
import "../theme"

// The ten field-of-view angles, five pairs in two rows of five. A field keeps what is being typed
// through a refresh, like the fields of the other rows.
FocusScope {
    id: panel

    property var row
    focus: true
    readonly property var edits: row.fovEdits

    // What is typed and not confirmed yet. A text that is no angle is only marked: the caller says why
    // it stays.
    function commit() {
        for (let i = 0; i < fields.count; ++i) {
            const field = fields.itemAt(i);
            if (!field.typing || field.text === field.value)
                continue;
            if (field.problem === "") {
                handOver(field);
            } else {
                field.typing = false;
                edits.refuse(i, field.text);
            }
        }
    }

    // The field shows what came of it.
    function handOver(field) {
        field.typing = false;
        edits.set(field.index, field.text);
        field.revert();
        row.edited();
    }

    // Goes to the first text that was refused.
    function goToFault() {
        const first = Object.keys(edits.refused)[0];
        (fields.itemAt(first === undefined ? 0 : first)).forceActiveFocus();
    }

    Connections {
        target: panel.edits
        function onCancelled() {
            for (let i = 0; i < fields.count; ++i) {
                fields.itemAt(i).typing = false;
                fields.itemAt(i).revert();
            }
        }
    }

    implicitHeight: note.visible ? note.y + note.height : grid.implicitHeight

    RowNote {
        id: note

        anchors.top: grid.bottom
        anchors.topMargin: Theme.gapTiny
        width: parent.width
        visible: text.length > 0
        text: panel.row.news
        row: panel.row
    }

    Grid {
        id: grid

        columns: 5
        spacing: Theme.gap

        Repeater {
            id: fields

            model: 10

            DefaultTextField {
                required property int index
                readonly property bool refused: panel.edits.refused[index] !== undefined
                readonly property bool changed: refused || panel.edits.angles[index] !== undefined

                objectName: "fov_" + index
                width: Theme.fieldWidth / 2
                focus: index === 0
                value: refused ? panel.edits.refused[index] : panel.row.manager.FovList[index]
                placeholderText: Theme.unreadText
                stale: panel.row.stale && !changed
                pending: changed || (typing && text !== value)
                problem: pending ? panel.edits.problemWith(text) : ""
                unit: "°"
                hint: qsTr("Angle %1 of pair %2, 0 to 360 degrees").arg(index % 2 + 1)
                                                                   .arg(Math.floor(index / 2) + 1)
                label: qsTr("Field-of-view angle %1").arg(index + 1)
                onCommitted: panel.handOver(this)
                Keys.onEscapePressed: panel.edits.forget(index)
            }
        }
    }
}
