import QtQuick 2.15
import QtQuick.Layouts 1.15
import QtQuick.Templates 2.15 as T
import QtQuick.Window 2.15
import "../controls"
import "../theme"
import "ValueHint.js" as ValueHint

// The screen of the lidars on a serial line, which have no pages: what they are, and the few things
// that can be read from them and set.
//
// manager       the object that talks to the lidar
// modelName     the chosen model
// restartWanted()  the user wants a restart; whoever listens asks first
FocusScope {
    id: screen

    property var manager
    property string modelName: ""

    readonly property bool kiva: modelName.indexOf("Kiva") === 0
    readonly property bool cmxSerial: manager.connectType === 2
    readonly property var baudRates: ["9600", "115200", "230400", "460800", "921600", "1000000",
                                      "2000000", "3000000", "3125000"]
    // What is being done right now, as a sentence; empty when nothing is.
    property string activity: ""
    readonly property bool waiting: activity.length > 0 || manager.isGetPBLVersion
    readonly property string notReady: !manager.IsConnected ? qsTr("Connect to the lidar first.")
                                     : waiting ? qsTr("Please wait.") : ""
    readonly property string notByCmx: cmxSerial ? notReady
        : qsTr("Not possible over a pair of serial ports. Choose the model's CMX variant to do this.")

    signal restartWanted()

    // Lets the window show what is going on before `operation`, which waits for the lidar, begins.
    function run(text, operation) {
        if (waiting)
            return;
        activity = text;
        start.operation = operation;
        start.start();
    }

    function readNet(silent) {
        const held = manager.LumoGetNetConfig(silent);
        if (held.length < 5)
            return;
        network.ip = held[0];
        network.mask = held[1];
        network.gateway = held[2];
        network.vlan = Number(held[3]) !== 0;
        network.vlanId = Number(held[4]);
        network.show();
    }

    function readDestination(silent) {
        const held = manager.LumoGetDestinationConfig(silent);
        if (held.length < 2)
            return;
        destination.ip = held[0];
        destination.port = String(held[1]);
        destinationIp.revert();
        destinationPort.revert();
    }

    function readAll() {
        if (manager.IsConnected && cmxSerial) {
            run(qsTr("Reading the lidar's settings…"), () => {
                readNet(true);
                readDestination(true);
            });
        }
    }

    Component.onCompleted: readAll()

    Connections {
        target: screen.manager
        function onIsConnectedChanged() { screen.readAll(); }
        function onIsGetPBLVersionChanged() { screen.readAll(); }
    }

    Timer {
        id: start

        property var operation

        interval: 20
        onTriggered: {
            operation();
            screen.activity = "";
        }
    }

    RowLayout {
        id: heading

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: Theme.gapWide
        spacing: Theme.gap

        SectionTitle {
            Layout.fillWidth: true
            text: screen.modelName
            description: screen.cmxSerial ? qsTr("Command frames over one serial line")
                                          : qsTr("Commands over RS-485, answers over the UART port")
        }
        LoadingWidget {
            objectName: "serialActivity"
            running: screen.waiting
            text: screen.activity.length > 0 ? screen.activity : qsTr("Reading the PBL version…")
        }
        DefaultButton {
            objectName: "serialRestart"
            text: qsTr("Restart")
            enabled: screen.notReady.length === 0
            hint: qsTr("Restart the lidar; you are asked first")
            onClicked: screen.restartWanted()
        }
    }

    Flickable {
        id: flick

        readonly property Item focused: Window.activeFocusItem

        // Brings the control that got the keyboard into view.
        onFocusedChanged: {
            let ancestor = focused;
            while (ancestor && ancestor !== grid)
                ancestor = ancestor.parent;
            if (!ancestor)
                return;
            const top = focused.mapToItem(grid, 0, 0).y;
            const lowest = top + focused.height + Theme.gapWide - height;
            contentY = Math.max(lowest, Math.min(contentY, Math.max(0, top - Theme.gapWide)));
        }

        objectName: "serialPanels"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: heading.bottom
        anchors.topMargin: Theme.gap
        anchors.bottom: parent.bottom
        clip: true
        contentWidth: width
        contentHeight: grid.implicitHeight + Theme.gapWide
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: DefaultScrollBar {}

        GridLayout {
            id: grid

            x: Theme.gapWide
            width: parent.width - 2 * Theme.gapWide
            columns: width > 2 * Theme.serialPanelWidth ? 2 : 1
            columnSpacing: Theme.gapWide
            rowSpacing: Theme.gapWide

            LumoSection {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: Theme.serialPanelWidth
                title: qsTr("Information")
                LumoFacts {
                    objectName: "lidarInfo"
                    width: parent.width
                    entries: screen.manager.LumoLidarInfo
                }
            }

            LumoSection {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: Theme.serialPanelWidth
                title: qsTr("Versions")
                LumoFacts {
                    objectName: "lidarVersions"
                    width: parent.width
                    entries: screen.manager.LumoLidarVersionInfo
                }
            }

            LumoNetwork {
                id: network

                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: Theme.serialPanelWidth
                obstacle: screen.notByCmx
                onReadWanted: screen.run(qsTr("Reading the network settings…"),
                                         () => screen.readNet(false))
                onSetWanted: screen.run(qsTr("Setting the network…"), () =>
                    screen.manager.LumoSetNet(ip, mask, gateway, vlanFlag, vlanId))
            }

            LumoOperation {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: Theme.serialPanelWidth
                obstacle: screen.notReady
                facts: screen.manager.LumoLidarInfo
                hasImu: screen.kiva && screen.cmxSerial
                returnModes: [qsTr("Strongest"), qsTr("Last"), qsTr("Strongest and last")]
                spinRates: [300, 600, 900, 1200]
                angularRanges: ["±125 °/s", "±250 °/s", "±500 °/s", "±1000 °/s", "±2000 °/s",
                                "±4000 °/s"]
                accelRanges: ["±2 g", "±4 g", "±8 g", "±16 g"]
                onReturnModeWanted: screen.run(qsTr("Setting the return mode…"), () =>
                    screen.manager.LumoSetReturnMode(mode))
                onSpinRateWanted: screen.run(qsTr("Setting the spin rate…"), () =>
                    screen.manager.LumoSetSpinRate(rpm))
                onStandbyWanted: screen.run(qsTr("Setting the mode…"), () =>
                    screen.manager.LumoSetStandby(standby))
                onImuRangeWanted: screen.run(qsTr("Setting the motion sensor…"), () =>
                    screen.manager.KivaSetIMURange(angular, accel))
            }

            LumoSection {
                id: destination

                property string ip: ""
                property string port: ""

                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: Theme.serialPanelWidth
                title: qsTr("Point-cloud destination")
                obstacle: screen.notByCmx

                LumoField {
                    caption: qsTr("IP address")
                    DefaultTextField {
                        id: destinationIp

                        objectName: "destinationIp"
                        value: destination.ip
                        problem: text.length === 0 || ValueHint.isAddress(text)
                                 ? "" : qsTr("An address like 192.168.1.201")
                        label: qsTr("Address to which the lidar sends its points")
                        hint: label
                    }
                }
                LumoField {
                    caption: qsTr("UDP port")
                    DefaultTextField {
                        id: destinationPort

                        objectName: "destinationPort"
                        value: destination.port
                        problem: text.length === 0 || ValueHint.isWholeNumber(text, 1, 65535)
                                 ? "" : qsTr("A number from 1 to 65535")
                        label: qsTr("UDP port to which the lidar sends its points")
                        hint: label
                    }
                }
                Row {
                    spacing: Theme.gap
                    DefaultButton {
                        objectName: "destinationRead"
                        text: qsTr("Read")
                        hint: qsTr("Read the destination from the lidar")
                        onClicked: screen.run(qsTr("Reading the destination…"),
                                              () => screen.readDestination(false))
                    }
                    DefaultButton {
                        objectName: "destinationSet"
                        text: qsTr("Set")
                        enabled: ValueHint.isAddress(destinationIp.text)
                                 && ValueHint.isWholeNumber(destinationPort.text, 1, 65535)
                        hint: qsTr("Write the destination to the lidar")
                        onClicked: screen.run(qsTr("Setting the destination…"), () =>
                            screen.manager.LumoSetDestinationIPandPort(destinationIp.text,
                                                                       Number(destinationPort.text)))
                    }
                }
            }

            LumoSection {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: Theme.serialPanelWidth
                title: qsTr("Baud rate")
                obstacle: screen.notByCmx

                LumoField {
                    caption: qsTr("Point-cloud rate")
                    DefaultComboBox {
                        id: baudRate

                        objectName: "baudRate"
                        width: Theme.serialChoiceWidth
                        model: screen.baudRates
                        chosenIndex: screen.baudRates.indexOf(screen.manager.baud_rate)
                        displayText: currentIndex < 0 ? screen.manager.baud_rate : currentText
                        label: qsTr("Baud rate of the point cloud")
                        hint: label
                    }
                }
                Row {
                    spacing: Theme.gap
                    DefaultButton {
                        objectName: "baudRead"
                        text: qsTr("Read")
                        hint: qsTr("Read the baud rate from the lidar")
                        onClicked: screen.run(qsTr("Reading the baud rate…"), () => {
                            baudRate.chosenIndex =
                                screen.baudRates.indexOf(screen.manager.LumoGetBaudRate());
                        })
                    }
                    DefaultButton {
                        objectName: "baudSet"
                        text: qsTr("Set")
                        enabled: baudRate.currentIndex >= 0
                        hint: qsTr("Write the baud rate to the lidar")
                        onClicked: screen.run(qsTr("Setting the baud rate…"), () =>
                            screen.manager.LumoSetBaudRateFromUI(baudRate.currentText))
                    }
                }
            }

            LumoSection {
                Layout.fillWidth: true
                Layout.columnSpan: grid.columns
                title: qsTr("Function safety")
                obstacle: screen.notReady

                DefaultButton {
                    objectName: "safetyRead"
                    text: qsTr("Read")
                    hint: qsTr("Read the state of every safety function")
                    onClicked: screen.run(qsTr("Reading the safety functions…"), () => {
                        safety.entries = screen.manager.LumoGetLidarFunctionSafety();
                    })
                }
                LumoFacts {
                    id: safety

                    objectName: "safetyStates"
                    width: parent.width
                }
            }
        }
    }
}
