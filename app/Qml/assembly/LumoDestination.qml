import QtQuick 2.15
import Tevron 1.0

// Where a serial-attached lidar sends its point cloud.
LumoSection {
    id: section

    // IP address and UDP port that the lidar holds; empty when it has not been asked.
    property var held: []

    signal readWanted()
    signal setWanted(string ip, int port)

    // Shows what the lidar holds, over whatever was typed.
    function take(destination) {
        held = destination;
        ipField.revert();
        portField.revert();
    }

    title: qsTr("Point-cloud destination")

    LumoField {
        caption: qsTr("IP address")
        DefaultTextField {
            id: ipField

            objectName: "destinationIp"
            value: section.held.length > 0 ? section.held[0] : ""
            problem: text.length > 0 ? InputRules.AddressProblem(text) : ""
            label: qsTr("Address to which the lidar sends its points")
            hint: label
        }
    }
    LumoField {
        caption: qsTr("UDP port")
        DefaultTextField {
            id: portField

            objectName: "destinationPort"
            value: section.held.length > 1 ? String(section.held[1]) : ""
            problem: text.length > 0 ? InputRules.PortProblem(text) : ""
            label: qsTr("UDP port to which the lidar sends its points")
            hint: label
        }
    }
    LumoReadSet {
        prefix: "destination"
        what: qsTr("the destination")
        complete: ipField.text.length > 0 && ipField.problem === ""
                  && portField.text.length > 0 && portField.problem === ""
        onReadWanted: section.readWanted()
        onSetWanted: section.setWanted(ipField.text, Number(portField.text))
    }
}
