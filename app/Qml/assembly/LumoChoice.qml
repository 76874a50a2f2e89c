import QtQuick 2.15
import "../theme"

// A line of the serial screen with a choice. What was picked stays until it is what the lidar holds,
// or taken back.
//
// model      the words to choose from
// heldIndex  the one that the lidar holds; -1 when that is not known, or none of them
// heldText   what it holds when that is none of them
// chosen     the one that is shown; -1: none
LumoField {
    id: line

    property var model: []
    property int heldIndex: -1
    property string heldText: ""
    property int picked: -1
    readonly property int chosen: picked >= 0 ? picked : heldIndex

    function undo() {
        picked = -1;
        box.revert();
    }

    edited: picked >= 0 && picked !== heldIndex
    was: heldIndex >= 0 ? model[heldIndex] : heldText
    onHeldIndexChanged: if (picked === heldIndex) picked = -1
    onUndone: undo()

    DefaultComboBox {
        id: box

        objectName: line.name
        width: Theme.serialChoiceWidth
        model: line.model
        chosenIndex: line.chosen
        displayText: currentIndex >= 0 ? currentText : line.heldText || Theme.unreadText
        pending: line.edited
        stale: line.stale && !line.edited
        label: line.label
        onChosen: line.picked = index === line.heldIndex ? -1 : index
    }
}
