import QtQuick 2.15
import "../controls"
import "../theme"

// The ten field-of-view angles, five pairs in two rows of five. A field keeps what is being typed
// through a refresh, like the fields of the other rows.
FocusScope {
    id: panel

    property var row
    focus: true
    readonly property var edits: row.fovEdits
    // What is wrong with the first angle that is no angle; see RowNote.
    property var verdict: ({})

    function judge() {
        verdict = {};
        for (let i = fields.count - 1; i >= 0; --i) {
            const field = fields.itemAt(i);
            if (field !== null && field.problem !== "")
                verdict = { "text": field.problem, "impossible": true };
        }
    }

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

    implicitHeight: grid.y + grid.implicitHeight

    PlainText {
        id: caption

        width: Theme.captionWidth
        height: Theme.smallControlHeight
        verticalAlignment: Text.AlignVCenter
        text: panel.row.caption
        color: panel.row.fovEdits.editCount > 0 ? Theme.pendingColor : Theme.textColor
        elide: Text.ElideRight
    }

    RowNote {
        id: note

        anchors.left: caption.right
        anchors.leftMargin: Theme.gap
        anchors.right: parent.right
        height: caption.height
        row: panel.row
        editor: panel
    }

    Grid {
        id: grid

        readonly property int count: 5

        anchors.top: caption.bottom
        columns: count
        spacing: Theme.gap

        Repeater {
            id: fields

            model: 2 * grid.count

            DefaultTextField {
                required property int index
                readonly property bool refused: panel.edits.refused[index] !== undefined
                readonly property bool changed: refused || panel.edits.angles[index] !== undefined

                objectName: "fov_" + index
                width: Math.min(Theme.fieldWidth / 2,
                                (panel.width - (grid.count - 1) * grid.spacing) / grid.count)
                focus: index === 0
                value: refused ? panel.edits.refused[index] : panel.row.manager.FovList[index]
                placeholderText: Theme.unreadText
                stale: panel.row.stale && !changed
                pending: changed || (typing && text !== value)
                problem: pending ? panel.edits.problemWith(text) : ""
                unit: "°"
                hint: qsTr("Angle %1 of pair %2, 0 to 360 degrees").arg(index % 2 + 1)
                                                                   .arg(Math.floor(index / 2) + 1)
                isNoted: true
                label: qsTr("Field-of-view angle %1").arg(index + 1)
                onProblemChanged: panel.judge()
                onCommitted: panel.handOver(this)
                Keys.onEscapePressed: panel.edits.forget(index)
            }
        }
    }
}
