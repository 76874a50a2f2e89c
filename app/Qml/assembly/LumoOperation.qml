import QtQuick 2.15
import "../controls"
import "../theme"

// The working mode of a serial-attached lidar: return mode, spin rate, standby and, where the model
// has one, the range of its motion sensor.
LumoSection {
    id: section

    // What the lidar said about itself, maps with "name" and "value".
    property var facts: []
    property bool hasImu: false
    property var returnModes: []
    property var spinRates: []
    property var angularRanges: []
    property var accelRanges: []

    signal returnModeWanted(int mode)
    signal spinRateWanted(int rpm)
    signal standbyWanted(int standby)
    signal imuRangeWanted(int angular, int accel)

    // The text of one fact; empty when the lidar did not tell it.
    function fact(name) {
        const found = facts.find(entry => entry.name === name);
        return found === undefined ? "" : found.value;
    }

    // The index that a fact holds; -1 for one that is no number.
    function indexFact(name) {
        return /^\d+$/.test(fact(name)) ? Number(fact(name)) : -1;
    }

    title: qsTr("Operation")

    LumoField {
        caption: qsTr("Return mode")
        DefaultComboBox {
            id: returnMode

            objectName: "returnMode"
            width: Theme.serialChoiceWidth
            model: section.returnModes
            chosenIndex: section.returnModes.indexOf(section.fact("Return Mode"))
            label: qsTr("Which echoes the lidar reports")
            hint: label
        }
        DefaultButton {
            objectName: "returnModeSet"
            text: qsTr("Set")
            enabled: returnMode.currentIndex >= 0
            hint: qsTr("Write the return mode to the lidar")
            onClicked: section.returnModeWanted(returnMode.currentIndex)
        }
    }
    LumoField {
        caption: qsTr("Spin rate")
        DefaultComboBox {
            id: spinRate

            objectName: "spinRate"
            width: Theme.serialChoiceWidth
            model: section.spinRates.map(rpm => qsTr("%1 rpm").arg(rpm))
            chosenIndex: section.spinRates.map(rpm => rpm + " rpm").indexOf(section.fact("Spin Rate"))
            label: qsTr("Turns of the lidar per minute")
            hint: label
        }
        DefaultButton {
            objectName: "spinRateSet"
            text: qsTr("Set")
            enabled: spinRate.currentIndex >= 0
            hint: qsTr("Write the spin rate to the lidar")
            onClicked: section.spinRateWanted(section.spinRates[spinRate.currentIndex])
        }
    }
    LumoField {
        caption: qsTr("Mode")
        DefaultComboBox {
            id: mode

            objectName: "standby"
            width: Theme.serialChoiceWidth
            model: [qsTr("Working"), qsTr("Standby")]
            chosenIndex: ["Working", "Standby"].indexOf(section.fact("Mode"))
            label: qsTr("Whether the lidar measures or rests")
            hint: label
        }
        DefaultButton {
            objectName: "standbySet"
            text: qsTr("Set")
            enabled: mode.currentIndex >= 0
            hint: qsTr("Write the mode to the lidar")
            onClicked: section.standbyWanted(mode.currentIndex)
        }
    }
    LumoField {
        visible: section.hasImu
        caption: qsTr("IMU turn rate")
        DefaultComboBox {
            id: angular

            objectName: "imuAngular"
            width: Theme.serialChoiceWidth
            model: section.angularRanges
            chosenIndex: section.indexFact("IMU Angular Range Index")
            label: qsTr("Angular range of the motion sensor")
            hint: label
        }
    }
    LumoField {
        visible: section.hasImu
        caption: qsTr("IMU acceleration")
        DefaultComboBox {
            id: accel

            objectName: "imuAccel"
            width: Theme.serialChoiceWidth
            model: section.accelRanges
            chosenIndex: section.indexFact("IMU Acceleration Range Index")
            label: qsTr("Acceleration range of the motion sensor")
            hint: label
        }
        DefaultButton {
            objectName: "imuSet"
            text: qsTr("Set")
            enabled: angular.currentIndex >= 0 && accel.currentIndex >= 0
            hint: qsTr("Write both ranges of the motion sensor to the lidar")
            onClicked: section.imuRangeWanted(angular.currentIndex, accel.currentIndex)
        }
    }
}
