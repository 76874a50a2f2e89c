import QtQuick 2.15
import Tevron 1.0
import "../controls"
import "../theme"

// Where a lidar on the network is: its address and the two ports.
//
// manager   the object that holds the connection settings
// recents   the lidars that were connected last, see RecentControl
// problem   what is wrong with the first text that cannot be used; empty when nothing is
// lidarPicked(lidar)  one of them is to be connected next
Row {
    id: fields

    property var manager
    property var recents: []
    readonly property var inputs: [ipField, portField].concat(hostPort.visible ? [hostPortField] : [])
    readonly property var wrong: inputs.find(field => field.problem !== "") || null
    readonly property string problem: wrong === null ? ""
        : qsTr("%1: %2").arg(wrong.label).arg(wrong.problem)

    signal lidarPicked(var lidar)

    // The keyboard goes to the text that has to be put right.
    function showProblem() {
        wrong.forceActiveFocus(Qt.OtherFocusReason);
    }

    spacing: Theme.gapWide

    LabelledField {
        caption: qsTr("IP address")

        ListedField {
            id: ipField

            objectName: "ipField"
            width: Theme.addressFieldWidth + Theme.controlHeight
            value: fields.manager.ip_address
            problem: text.trim().length > 0 ? InputRules.AddressProblem(text.trim()) : ""
            label: parent.caption
            hint: qsTr("Address of the lidar; empty: learned from its packets")
            choices: fields.recents
            listName: qsTr("Lidars connected last")
            emptyText: qsTr("No lidar was connected yet.")
            onCommitted: fields.manager.ip_address = text
            onPicked: fields.lidarPicked(choice)
        }
    }

    LabelledField {
        caption: qsTr("Port")

        DefaultTextField {
            id: portField

            objectName: "portField"
            width: Theme.numberFieldWidth
            value: fields.manager.port
            problem: InputRules.PortProblem(text.trim())
            label: qsTr("Command port")
            hint: qsTr("TCP port on which the lidar takes commands, 1 to 65535")
            onCommitted: fields.manager.port = text
        }
    }

    LabelledField {
        id: hostPort

        visible: fields.manager.enableCmxClientHostPortUi
        caption: qsTr("Host port")

        DefaultTextField {
            id: hostPortField

            objectName: "hostPortField"
            width: Theme.numberFieldWidth
            value: fields.manager.cmxClientHostPort
            problem: InputRules.HostPortProblem(text.trim())
            label: parent.caption
            hint: qsTr("Local TCP port of the connection: ANY, or 1024 to 65535")
            onCommitted: fields.manager.cmxClientHostPort = text
        }
    }
}
