import QtQuick 2.15
import "../controls"

// What the safety functions of a serial-attached lidar report. `held` is maps as for LumoFacts.
LumoSection {
    id: section

    signal readWanted()

    title: qsTr("Function safety")

    DefaultButton {
        objectName: "safetyRead"
        text: qsTr("Read")
        hint: qsTr("Read the state of every safety function")
        onClicked: section.readWanted()
    }
    LumoFacts {
        objectName: "safetyStates"
        width: parent.width
        entries: section.held
        stale: section.stale
    }
}
