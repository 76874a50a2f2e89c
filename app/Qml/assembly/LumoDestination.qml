import QtQuick 2.15
import Tevron 1.0

// Where a serial-attached lidar sends its point cloud. `held` is IP address and UDP port.
LumoSection {
    id: section

    readonly property var wanted: [ipField.text, Number(portField.text)]

    signal readWanted()
    signal setWanted()

    title: qsTr("Point-cloud destination")
    fields: [ipField, portField]

    LumoText {
        id: ipField

        caption: qsTr("IP address")
        name: "destinationIp"
        label: qsTr("Address to which the lidar sends its points")
        held: section.held.length > 0 ? section.held[0] : ""
        stale: section.stale
        check: InputRules.AddressProblem
    }
    LumoText {
        id: portField

        caption: qsTr("UDP port")
        name: "destinationPort"
        label: qsTr("UDP port to which the lidar sends its points")
        held: section.held.length > 1 ? String(section.held[1]) : ""
        stale: section.stale
        check: InputRules.PortProblem
    }
    LumoReadSet {
        prefix: "destination"
        what: qsTr("the destination")
        complete: section.complete
        onReadWanted: section.readWanted()
        onSetWanted: section.setWanted()
    }
}
