import QtQuick 2.15
import QtQuick.Layouts 1.15
import Tevron 1.0
import "../controls"
import "../theme"

// The bar at the top: which model, reached how, and the button that connects.
//
// programName   shown at the left
// manager       the object that holds the connection settings
// modelName     the chosen model
// connecting    an attempt runs
FocusScope {
    id: bar

    property var manager
    property string programName: ""
    property string modelName: ""
    property bool connecting: false
    readonly property bool open: manager.IsConnected || connecting
    readonly property bool network: manager.connectType === 0
    readonly property bool serialPair: manager.connectType === 1

    signal modelChosen(string name)
    signal connectClicked()
    signal restartWanted()
    signal resetWanted()
    signal aboutWanted()

    implicitHeight: Theme.topBarHeight

    SerialPortList { id: serialPorts }

    Rectangle {
        anchors.fill: parent
        color: Theme.trenchColor
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.gapWide
        anchors.rightMargin: Theme.gapWide
        spacing: Theme.gapWide

        Text {
            Layout.rightMargin: Theme.gap
            text: bar.programName
            font: Theme.headlineFont
            color: Theme.textColor
        }

        LabelledField {
            caption: qsTr("Model")

            DefaultComboBox {
                objectName: "modelChoice"
                width: Theme.modelFieldWidth
                enabled: !bar.manager.IsConnected && bar.manager.getPVNowName() === ""
                         && !bar.connecting
                model: bar.manager.LidarModelList
                chosenIndex: bar.manager.LidarModelList.indexOf(bar.modelName)
                label: qsTr("Lidar model")
                hint: enabled ? qsTr("Choose the model of the lidar before connecting")
                              : qsTr("The model cannot be changed now")
                onChosen: bar.modelChosen(model[index])
            }
        }

        LabelledField {
            visible: bar.network
            caption: qsTr("IP address")

            DefaultTextField {
                objectName: "ipField"
                width: Theme.addressFieldWidth
                enabled: !bar.open
                value: bar.manager.ip_address
                problem: InputRules.AddressProblem(text)
                label: parent.caption
                hint: qsTr("Address of the lidar on the network")
                onCommitted: bar.manager.ip_address = text
            }
        }

        LabelledField {
            visible: bar.network
            caption: qsTr("Port")

            DefaultTextField {
                objectName: "portField"
                width: Theme.numberFieldWidth
                enabled: !bar.open
                value: bar.manager.port
                problem: InputRules.PortProblem(text)
                label: qsTr("Command port")
                hint: qsTr("TCP port on which the lidar takes commands, 1 to 65535")
                onCommitted: bar.manager.port = text
            }
        }

        LabelledField {
            visible: bar.network && bar.manager.enableCmxClientHostPortUi
            caption: qsTr("Host port")

            DefaultTextField {
                objectName: "hostPortField"
                width: Theme.numberFieldWidth
                enabled: !bar.open
                value: bar.manager.cmxClientHostPort
                problem: InputRules.HostPortProblem(text)
                label: parent.caption
                hint: qsTr("Local TCP port of the connection: ANY, or 1024 to 65535")
                onCommitted: bar.manager.cmxClientHostPort = text
            }
        }

        LabelledField {
            visible: !bar.network
            caption: bar.serialPair ? qsTr("RS-485 port") : qsTr("Serial port")

            SerialPortPicker {
                objectName: "port485"
                enabled: !bar.open
                value: bar.manager.serial_port_485
                ports: serialPorts.ports
                label: parent.caption
                onListWanted: serialPorts.Refresh()
                onPicked: bar.manager.serial_port_485 = device
            }
        }

        LabelledField {
            visible: bar.serialPair
            caption: qsTr("UART port")

            SerialPortPicker {
                objectName: "port232"
                enabled: !bar.open
                value: bar.manager.serial_port_232
                ports: serialPorts.ports
                label: parent.caption
                onListWanted: serialPorts.Refresh()
                onPicked: bar.manager.serial_port_232 = device
            }
        }

        LabelledField {
            visible: bar.serialPair
            caption: qsTr("Point-cloud baud rate")

            DefaultTextField {
                objectName: "pointCloudBaud"
                width: Theme.addressFieldWidth
                enabled: !bar.open
                value: bar.manager.baud_rate
                unit: "Bd"
                problem: InputRules.NumberProblem(text, 1, 2147483647)
                label: parent.caption
                hint: qsTr("Baud rate of the UART port, on which the point cloud arrives")
                onCommitted: {
                    bar.manager.baud_rate = text;
                    revert();
                }
            }
        }

        Item { Layout.fillWidth: true }

        LoadingWidget {
            objectName: "connectingIndicator"
            running: bar.connecting
            text: qsTr("Connecting…")
        }

        StatusLamp {
            objectName: "connectionLamp"
            visible: !bar.connecting
            on: bar.manager.IsConnected
        }

        DefaultButton {
            objectName: "connectButton"
            emphasised: !bar.manager.IsConnected
            enabled: !bar.manager.IsDownloadLog
            text: bar.manager.IsConnected ? qsTr("Disconnect") : qsTr("Connect")
            hint: bar.manager.IsConnected ? qsTr("End the connection to the lidar")
                                          : qsTr("Connect to the lidar with these settings")
            onClicked: bar.connectClicked()
        }

        GearMenu {
            objectName: "gearButton"
            visible: bar.network
            onRestartWanted: bar.restartWanted()
            onResetWanted: bar.resetWanted()
        }

        // Keeps the gear's place, so that Connect stands where it always stands.
        Item {
            visible: !bar.network
            implicitWidth: Theme.controlHeight
        }

        DefaultToolButton {
            objectName: "aboutButton"
            label: qsTr("About this program")
            icon.source: "../icons/info.svg"
            onClicked: bar.aboutWanted()
        }
    }
}
