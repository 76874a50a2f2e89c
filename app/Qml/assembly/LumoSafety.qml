import QtQuick 2.15
import "../controls"

// What the safety functions of a serial-attached lidar report.
LumoSection {
    id: section

    // Maps as LumoFacts shows them; empty when the lidar has not been asked.
    property alias entries: states.entries

    signal readWanted()

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
