import QtQuick 2.15
import "../controls"
import "../theme"

// The working mode of a serial-attached lidar: return mode, spin rate, standby and, where the model
// has one, the range of its motion sensor.
LumoSection {
    id: section

    // What the lidar said about itself, maps with "key", "raw" and "state".
    property var facts: []
    // Whether the motion sensor can be reached here; only some models have one and tell its ranges.
    property bool imuReachable: false
    readonly property bool hasImu: imuReachable && facts.some(fact => fact.key === "angular_range")
    readonly property var returnModes: [qsTr("Strongest"), qsTr("Last"), qsTr("Strongest and last")]
    readonly property var spinRates: [300, 600, 900, 1200]
    readonly property var angularRanges: ["±125 °/s", "±250 °/s", "±500 °/s", "±1000 °/s",
                                          "±2000 °/s", "±4000 °/s"]
    readonly property var accelRanges: ["±2 g", "±4 g", "±8 g", "±16 g"]

    signal returnModeWanted(int mode)
    signal spinRateWanted(int rpm)
    signal standbyWanted(int standby)
    signal imuRangeWanted(int angular, int accel)

    // The number that the lidar told under `key`; -1 when it did not.
    function raw(key) {
        const fact = facts.find(entry => entry.key === key);
        return fact !== undefined && fact.state === "read" ? fact.raw : -1;
    }

    // The same as an index into `list`.
    function index(key, list) {
        return raw(key) < list.length ? raw(key) : -1;
    }

    title: qsTr("Operation")

    LumoField {
        caption: qsTr("Return mode")
        DefaultComboBox {
            id: returnMode

            objectName: "returnMode"
            width: Theme.serialChoiceWidth
            model: section.returnModes
            chosenIndex: section.index("return_mode", model)
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
            chosenIndex: section.spinRates.indexOf(section.raw("spin_rate"))
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
            chosenIndex: section.index("standby", model)
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
            chosenIndex: section.index("angular_range", model)
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
            chosenIndex: section.index("accel_range", model)
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
