import QtQuick 2.15
import Tevron 1.0
import "../controls"
import "../theme"

// Where a lidar on the network is: its address and the two ports.
//
// manager   the object that holds the connection settings
Row {
    id: fields

    property var manager

    spacing: Theme.gapWide

    LabelledField {
        caption: qsTr("IP address")

        DefaultTextField {
            objectName: "ipField"
            width: Theme.addressFieldWidth
            value: fields.manager.ip_address
            problem: InputRules.AddressProblem(text)
            label: parent.caption
            hint: qsTr("Address of the lidar on the network")
            onCommitted: fields.manager.ip_address = text
        }
    }

    LabelledField {
        caption: qsTr("Port")

        DefaultTextField {
            objectName: "portField"
            width: Theme.numberFieldWidth
            value: fields.manager.port
            problem: InputRules.PortProblem(text)
            label: qsTr("Command port")
            hint: qsTr("TCP port on which the lidar takes commands, 1 to 65535")
            onCommitted: fields.manager.port = text
        }
    }

    LabelledField {
        visible: fields.manager.enableCmxClientHostPortUi
        caption: qsTr("Host port")

        DefaultTextField {
            objectName: "hostPortField"
            width: Theme.numberFieldWidth
            value: fields.manager.cmxClientHostPort
            problem: InputRules.HostPortProblem(text)
            label: parent.caption
            hint: qsTr("Local TCP port of the connection: ANY, or 1024 to 65535")
            onCommitted: fields.manager.cmxClientHostPort = text
        }
    }
}
