import QtQuick 2.15
import Tevron 1.0
import "../theme"

// The network settings of a serial-attached lidar, with its VLAN. `held` is address, mask, gateway,
// VLAN flag and VLAN identifier.
LumoSection {
    id: section

    readonly property bool known: held.length > 4
    // What stands in the fields, in the order of `held`.
    readonly property var wanted: [ipField.text, maskField.text, gatewayField.text,
                                   vlanSwitch.on ? 1 : 0, Number(vlanField.text)]

    signal readWanted()
    signal setWanted()

    function heldText(index) {
        return known ? String(held[index]) : "";
    }

    title: qsTr("Network")
    fields: [ipField, maskField, gatewayField, vlanSwitch, vlanField]

    LumoText {
        id: ipField

        caption: qsTr("IP address")
        name: "netIp"
        label: qsTr("IP address of the lidar")
        held: section.heldText(0)
        stale: section.stale
        check: InputRules.AddressProblem
    }
    LumoText {
        id: maskField

        caption: qsTr("Subnet mask")
        name: "netMask"
        label: qsTr("Subnet mask of the lidar")
        held: section.heldText(1)
        stale: section.stale
        check: InputRules.AddressProblem
    }
    LumoText {
        id: gatewayField

        caption: qsTr("Gateway")
        name: "netGateway"
        label: qsTr("Gateway of the lidar")
        held: section.heldText(2)
        stale: section.stale
        check: InputRules.AddressProblem
    }
    LumoSwitch {
        id: vlanSwitch

        caption: qsTr("VLAN")
        name: "netVlan"
        label: qsTr("Use a VLAN")
        known: section.known
        held: section.known && section.held[3] !== 0
    }
    LumoText {
        id: vlanField

        caption: qsTr("VLAN identifier")
        name: "netVlanId"
        label: qsTr("VLAN identifier, 0 to 4095")
        fieldWidth: Theme.numberFieldWidth
        enabled: vlanSwitch.on
        held: section.heldText(4)
        stale: section.stale
        check: text => InputRules.NumberProblem(text, 0, 4095)
    }
    LumoReadSet {
        prefix: "net"
        what: qsTr("the network settings")
        complete: section.complete
        onReadWanted: section.readWanted()
        onSetWanted: section.setWanted()
    }
}
