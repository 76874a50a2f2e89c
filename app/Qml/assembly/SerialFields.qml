import QtQuick 2.15
import Tevron 1.0
import "../controls"
import "../theme"

// The serial lines on which a lidar is reached.
//
// manager   the object that holds the connection settings
// pair      requests and answers have a line each, and the point cloud comes with the answers
// recents   the lidars that were connected last, see RecentControl
// lidarPicked(lidar)  one of them is to be connected next
Row {
    id: fields

    property var manager
    property bool pair: false
    property var recents: []

    signal lidarPicked(var lidar)

    spacing: Theme.gapWide

    LabelledField {
        caption: fields.pair ? qsTr("RS-485 port") : qsTr("Serial port")

        PortField {
            objectName: "port485"
            width: Theme.portFieldWidth
            value: fields.manager.serial_port_485
            label: parent.caption
            recents: fields.recents
            onCommitted: fields.manager.serial_port_485 = text
            onLidarPicked: fields.lidarPicked(lidar)
        }
    }

    LabelledField {
        visible: fields.pair
        caption: qsTr("UART port")

        PortField {
            objectName: "port232"
            width: Theme.portFieldWidth
            value: fields.manager.serial_port_232
            label: parent.caption
            recents: fields.recents
            onCommitted: fields.manager.serial_port_232 = text
            onLidarPicked: fields.lidarPicked(lidar)
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
