import QtQuick 2.15
import Tevron 1.0
import "../controls"
import "../theme"

// The serial lines on which a lidar is reached.
//
// manager   the object that holds the connection settings
// pair      requests and answers have a line each, and the point cloud comes with the answers
Row {
    id: fields

    property var manager
    property bool pair: false

    spacing: Theme.gapWide

    SerialPortList { id: serialPorts }

    LabelledField {
        caption: fields.pair ? qsTr("RS-485 port") : qsTr("Serial port")

        SerialPortPicker {
            objectName: "port485"
            value: fields.manager.serial_port_485
            ports: serialPorts.ports
            label: parent.caption
            onListWanted: serialPorts.Refresh()
            onPicked: fields.manager.serial_port_485 = device
        }
    }

    LabelledField {
        visible: fields.pair
        caption: qsTr("UART port")

        SerialPortPicker {
            objectName: "port232"
            value: fields.manager.serial_port_232
            ports: serialPorts.ports
            label: parent.caption
            onListWanted: serialPorts.Refresh()
            onPicked: fields.manager.serial_port_232 = device
        }
    }

    LabelledField {
        visible: fields.pair
        caption: qsTr("Point-cloud baud rate")

        DefaultTextField {
            objectName: "pointCloudBaud"
            width: Theme.addressFieldWidth
            value: fields.manager.baud_rate
            unit: "Bd"
            problem: InputRules.NumberProblem(text, 1, 2147483647)
            label: parent.caption
            hint: qsTr("Baud rate of the UART port, on which the point cloud arrives")
            onCommitted: {
                fields.manager.baud_rate = text;
                revert();
            }
        }
    }
}
