import QtQuick 2.15
import "../controls"
import "../theme"
import "ValueHint.js" as ValueHint

// The network settings of a serial-attached lidar, with its VLAN.
LumoSection {
    id: section

    property string ip: ""
    property string mask: ""
    property string gateway: ""
    property bool vlan: false
    property int vlanId: 0

    signal readWanted()
    signal setWanted(string ip, string mask, string gateway, int vlanFlag, int vlanId)

    // Shows what the lidar holds, over whatever was typed.
    function show() {
        for (const field of [ipField, maskField, gatewayField, vlanField])
            field.revert();
        vlanSwitch.checked = vlan;
    }

    readonly property bool valid: ipField.problem === "" && maskField.problem === ""
                                  && gatewayField.problem === "" && vlanField.problem === ""

    function addressProblem(text) {
        return text.length === 0 || ValueHint.isAddress(text) ? "" : qsTr("An address like 192.168.1.201");
    }

    title: qsTr("Network")

    LumoField {
        caption: qsTr("IP address")
        DefaultTextField {
            id: ipField

            objectName: "netIp"
            value: section.ip
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
            value: section.mask
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
            value: section.gateway
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
            value: section.vlan
            label: qsTr("Use a VLAN")
            hint: label
        }
        DefaultTextField {
            id: vlanField

            objectName: "netVlanId"
            width: Theme.numberFieldWidth
            enabled: vlanSwitch.checked
            value: String(section.vlanId)
            problem: ValueHint.isWholeNumber(text, 0, 4095) ? "" : qsTr("0 to 4095")
            label: qsTr("VLAN identifier, 0 to 4095")
            hint: label
        }
    }
    Row {
        spacing: Theme.gap
        DefaultButton {
            objectName: "netRead"
            text: qsTr("Read")
            hint: qsTr("Read the network settings from the lidar")
            onClicked: section.readWanted()
        }
        DefaultButton {
            objectName: "netSet"
            text: qsTr("Set")
            enabled: section.valid && ipField.text.length > 0
            hint: qsTr("Write the network settings; they count after a restart")
            onClicked: section.setWanted(ipField.text, maskField.text, gatewayField.text,
                                         vlanSwitch.checked ? 1 : 0, Number(vlanField.text))
        }
    }
}
