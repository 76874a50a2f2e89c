import QtQuick 2.15
import "../theme"

// The ten field-of-view angles, five pairs in two rows of five. A field keeps what is being typed
// through a refresh, like the fields of the other rows.
FocusScope {
    id: panel

    property var row
    readonly property var edits: row.fovEdits

    function commit() {
        for (let i = 0; i < fields.count; ++i) {
            const field = fields.itemAt(i);
            if (field.typing && field.text !== field.value)
                handOver(field);
        }
    }

    // Hands over what was typed; the field shows what came of it. A refused text stays like one that
    // is being typed, and is not handed over again when the keyboard leaves.
    function handOver(field) {
        const refused = edits.problemWith(field.text) !== "";
        const again = refused && field.text === field.refusedText;
        // The message takes the keyboard away, so this comes first.
        field.refusedText = refused ? field.text : "";
        field.typing = refused;
        if (!again)
            edits.set(field.index, field.text);
        if (!refused)
            field.revert();
        row.edited();
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
                property string refusedText: ""
                readonly property bool changed: panel.edits.angles[index] !== undefined

                objectName: "fov_" + index
                width: Theme.fieldWidth / 2
                focus: index === 0
                value: panel.row.manager.FovList[index]
                placeholderText: Theme.unreadText
                stale: panel.row.stale && !changed
                pending: changed || (typing && text !== value)
                problem: pending ? panel.edits.problemWith(text) : ""
                unit: "°"
                hint: qsTr("Angle %1 of pair %2, 0 to 360 degrees").arg(index % 2 + 1)
                                                                   .arg(Math.floor(index / 2) + 1)
                label: qsTr("Field-of-view angle %1").arg(index + 1)
                onCommitted: panel.handOver(this)
                onTextEdited: refusedText = ""
            }
        }
    }
}
