import QtQuick 2.15
import Tevron 1.0

// A serial port: its device path can be typed, or picked from the lidars that were connected last and
// the ports of this computer. The ports are listed when the list is opened, and none is opened by it.
//
// recents   those lidars, see RecentControl
// lidarPicked(lidar)  one of them is to be connected next
ListedField {
    id: field

    property var recents: []

    signal lidarPicked(var lidar)

    hint: qsTr("Device path of the serial port, like /dev/ttyUSB0")
    choices: recents.concat(serialPorts.ports.map(
        port => ({ "kind": qsTr("Ports of this computer"), "label": port.label, "device": port.device })))
    listName: qsTr("Lidars connected last and serial ports")
    emptyText: qsTr("No serial port was found; plug the adapter in or type its path.")
    onListWanted: serialPorts.Refresh()
    onPicked: choice.device ? committed(choice.device) : lidarPicked(choice)

    SerialPortList { id: serialPorts }
}
