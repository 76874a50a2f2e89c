import QtQuick 2.15
import "../theme"

// The ten field-of-view angles, five pairs in two rows of five. A field keeps what is being typed
// through a refresh, like the fields of the other rows.
FocusScope {
    id: panel

    property var row
    readonly property var manager: row.manager
    // Which of the ten were changed here and are not saved yet.
    property var editedFields: []

    function problemWith(text) {
        const value = Number(text);
        return text.trim().length > 0 && value >= 0 && value <= 360 ? "" : qsTr("0 to 360 degrees");
    }

    // Values were read again. That ends the edits, unless some are still waiting to be written; what
    // is being typed right now stays in any case.
    function show() {
        if (manager.getSetMapSize() === 0)
            editedFields = [];
        for (let i = 0; i < fields.count; ++i) {
            if (!fields.itemAt(i).typing)
                fields.itemAt(i).revert();
        }
    }

    function commit() {
        for (let i = 0; i < fields.count; ++i) {
            const field = fields.itemAt(i);
            if (field.typing && field.text !== field.value)
                handOver(field);
        }
    }

    function handOver(field) {
        field.typing = false;
        field.handedOver = field.text;
        edit(field.index, field.text);
    }

    function edit(index, text) {
        editedFields = editedFields.concat([index]);
        manager.SetMultiFovConfig(index, text);
        row.edited();
    }

    function keepAngles(angles) {
        angles.forEach((angle, i) => {
            if (angle !== manager.FovList[i])
                edit(i, angle);
        });
    }

    Connections {
        target: panel.manager
        function onMyMapChanged() { panel.show(); }
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
                // What was handed over last: a refused text stays in the field, and is not handed
                // over again when the keyboard leaves.
                property string handedOver: ""

                readonly property bool changed: panel.editedFields.indexOf(index) >= 0

                objectName: "fov_" + index
                width: Theme.fieldWidth / 2
                focus: index === 0
                value: panel.manager.FovList[index]
                placeholderText: Theme.unreadText
                stale: panel.row.stale && !changed
                pending: changed || (typing && text !== value)
                problem: pending ? panel.problemWith(text) : ""
                unit: "°"
                hint: qsTr("Angle %1 of pair %2, 0 to 360 degrees").arg(index % 2 + 1)
                                                                   .arg(Math.floor(index / 2) + 1)
                label: qsTr("Field-of-view angle %1").arg(index + 1)
                onCommitted: if (text !== handedOver) panel.handOver(this)
                onTextEdited: handedOver = ""
            }
        }
    }
}
