import QtQuick 2.15
import "../controls"
import "../theme"

// The working mode of a serial-attached lidar: return mode, spin rate, standby and, where the model
// has one, the range of its motion sensor. What the lidar holds stands among what it says of itself.
LumoSection {
    id: section

    // What the lidar said about itself, maps with "key", "raw" and "state".
    property var facts: []
    // Whether the motion sensor can be reached here; only some models have one and tell its ranges.
    property bool imuReachable: false
    readonly property bool hasImu: imuReachable && facts.some(fact => fact.key === "angular_range")
    readonly property var spinRates: [300, 600, 900, 1200]
    // What the lidar has taken and not told since, by key.
    property var taken: ({})

    // What is set together: the values by key, and the lines that they stand in.
    readonly property var orders: ({
        returnMode: { values: { return_mode: returnMode.chosen }, lines: [returnMode] },
        spinRate: { values: { spin_rate: spinRates[spinRate.chosen] }, lines: [spinRate] },
        standby: { values: { standby: mode.chosen }, lines: [mode] },
        imu: { values: { angular_range: angular.chosen, accel_range: accel.chosen },
               lines: [angular, accel] }
    })
    readonly property var editedOrders: Object.keys(orders)
        .filter(order => orders[order].lines.some(line => line.edited))

    signal setWanted(string order)

    function take(values) {
        taken = Object.assign({}, taken, values);
    }

    function forget() {
        taken = {};
    }

    function fact(key) {
        return facts.find(entry => entry.key === key) || { state: "unread" };
    }

    // The number that the lidar holds under `key`; -1 when that is not known.
    function raw(key) {
        return taken[key] !== undefined ? taken[key] : fact(key).state !== "unread" ? fact(key).raw : -1;
    }

    function words(key) {
        return taken[key] === undefined && fact(key).state !== "unread" ? fact(key).value : "";
    }

    // The same as an index into a list of `count`.
    function index(key, count) {
        return raw(key) < count ? raw(key) : -1;
    }

    function isStale(key) {
        return !connected || fact(key).state === "stale";
    }

    title: qsTr("Operation")
    fields: [returnMode, spinRate, mode, angular, accel]
    onFactsChanged: {
        const left = {};
        for (const key in taken) {
            if (fact(key).state !== "read")
                left[key] = taken[key];
        }
        taken = left;
    }

    LumoChoice {
        id: returnMode

        caption: qsTr("Return mode")
        name: "returnMode"
        label: qsTr("Which echoes the lidar reports")
        model: [qsTr("Strongest"), qsTr("Last"), qsTr("Strongest and last")]
        heldIndex: section.index("return_mode", model.length)
        heldText: section.words("return_mode")
        stale: section.isStale("return_mode")
        LumoSet { line: returnMode; onClicked: section.setWanted("returnMode") }
    }
    LumoChoice {
        id: spinRate

        caption: qsTr("Spin rate")
        name: "spinRate"
        label: qsTr("Turns of the lidar per minute")
        model: section.spinRates.map(rpm => qsTr("%1 rpm").arg(rpm))
        heldIndex: section.spinRates.indexOf(section.raw("spin_rate"))
        heldText: section.words("spin_rate")
        stale: section.isStale("spin_rate")
        LumoSet { line: spinRate; onClicked: section.setWanted("spinRate") }
    }
    LumoChoice {
        id: mode

        caption: qsTr("Mode")
        name: "standby"
        label: qsTr("Whether the lidar measures or rests")
        model: [qsTr("Working"), qsTr("Standby")]
        heldIndex: section.index("standby", model.length)
        stale: section.isStale("standby")
        LumoSet { line: mode; onClicked: section.setWanted("standby") }
    }
    LumoChoice {
        id: angular

        visible: section.hasImu
        caption: qsTr("IMU turn rate")
        name: "imuAngular"
        label: qsTr("Angular range of the motion sensor")
        model: ["±125 °/s", "±250 °/s", "±500 °/s", "±1000 °/s", "±2000 °/s", "±4000 °/s"]
        heldIndex: section.index("angular_range", model.length)
        heldText: section.words("angular_range")
        stale: section.isStale("angular_range")
    }
    LumoChoice {
        id: accel

        visible: section.hasImu
        caption: qsTr("IMU acceleration")
        name: "imuAccel"
        label: qsTr("Acceleration range of the motion sensor")
        model: ["±2 g", "±4 g", "±8 g", "±16 g"]
        heldIndex: section.index("accel_range", model.length)
        heldText: section.words("accel_range")
        stale: section.isStale("accel_range")
        LumoSet {
            objectName: "imuSet"
            line: accel
            enabled: angular.chosen >= 0 && accel.chosen >= 0
            emphasised: angular.edited || accel.edited
            onClicked: section.setWanted("imu")
        }
    }
}
