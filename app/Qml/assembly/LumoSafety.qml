import QtQuick 2.15
import "../controls"

// What the safety functions of a serial-attached lidar report.
LumoSection {
    id: section

    signal readWanted()

    // Shows what the lidar told, maps as for LumoFacts.
    function take(told) {
        states.entries = told;
    }

    title: qsTr("Function safety")

    DefaultButton {
        objectName: "safetyRead"
        text: qsTr("Read")
        hint: qsTr("Read the state of every safety function")
        onClicked: section.readWanted()
    }
    LumoFacts {
        id: states

        objectName: "safetyStates"
        width: parent.width
    }
}
