import QtQuick 2.15
import Tevron 1.0
import "../theme"

// The network settings of a serial-attached lidar, with its VLAN.
LumoSection {
    id: section

    // Address, mask, gateway, VLAN flag and VLAN identifier that the lidar holds; empty when it has
    // not been asked.
    property var held: []
    readonly property bool known: held.length > 4
    readonly property var fields: [ipField, maskField, gatewayField, vlanField]

    signal readWanted()
    signal setWanted(string ip, string mask, string gateway, int vlanFlag, int vlanId)

    // Shows what the lidar holds, over whatever was typed.
    function take(net) {
        held = net;
        for (const field of fields)
            field.revert();
        vlanSwitch.checked = vlanSwitch.value;
    }

    function addressProblem(text) {
        return text.length > 0 ? InputRules.AddressProblem(text) : "";
    }

    title: qsTr("Network")

    LumoField {
        caption: qsTr("IP address")
        DefaultTextField {
            id: ipField

            objectName: "netIp"
            value: section.known ? section.held[0] : ""
            problem: section.addressProblem(text)
            label: qsTr("IP address of the lidar")
            hint: label
        }
    }
    LumoField {
        caption: qsTr("Subnet mask")
        DefaultTextField {
            id: maskField

            objectName: "netMask"
            value: section.known ? section.held[1] : ""
            problem: section.addressProblem(text)
            label: qsTr("Subnet mask of the lidar")
            hint: label
        }
    }
    LumoField {
        caption: qsTr("Gateway")
        DefaultTextField {
            id: gatewayField

            objectName: "netGateway"
            value: section.known ? section.held[2] : ""
            problem: section.addressProblem(text)
            label: qsTr("Gateway of the lidar")
            hint: label
        }
    }
    LumoField {
        caption: qsTr("VLAN")
        DefaultSwitch {
            id: vlanSwitch

            objectName: "netVlan"
            value: section.known && section.held[3] !== 0
            label: qsTr("Use a VLAN")
            hint: label
        }
        DefaultTextField {
            id: vlanField

            objectName: "netVlanId"
            width: Theme.numberFieldWidth
            enabled: vlanSwitch.checked
            value: section.known ? String(section.held[4]) : ""
            problem: enabled ? InputRules.NumberProblem(text, 0, 4095) : ""
            label: qsTr("VLAN identifier, 0 to 4095")
            hint: label
        }
    }
    LumoReadSet {
        prefix: "net"
        what: qsTr("the network settings")
        complete: section.fields.every(field => field.problem === "")
                  && ipField.text.length > 0 && maskField.text.length > 0
                  && gatewayField.text.length > 0
        onReadWanted: section.readWanted()
        onSetWanted: section.setWanted(ipField.text, maskField.text, gatewayField.text,
                                       vlanSwitch.checked ? 1 : 0, Number(vlanField.text))
    }
}
