import QtQuick 2.15

// A line of the serial screen with a switch. Where it was put stays until the lidar holds it, or it
// is taken back.
//
// known   what the lidar holds is known: it is `held`
// on      where the switch stands
LumoField {
    id: line

    property bool known: false
    property bool held: false
    property var moved: null
    readonly property bool on: moved !== null ? moved : held

    function undo() {
        moved = null;
        control.checked = control.value;
    }

    edited: moved !== null && (!known || moved !== held)
    was: !known ? "" : held ? qsTr("on") : qsTr("off")
    onHeldChanged: if (moved === held) moved = null
    onUndone: undo()

    DefaultSwitch {
        id: control

        objectName: line.name
        value: line.on
        unknown: !line.known && line.moved === null
        pending: line.edited
        label: line.label
        onSwitched: line.moved = on
    }
}
