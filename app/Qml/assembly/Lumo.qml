import QtQuick 2.15
import QtQuick.Layouts 1.15
import Tevron 1.0
import "../controls"
import "../theme"

// The screen of the lidars on a serial line, which have no pages: what they are, and the few things
// that can be read from them and set.
//
// manager       the object that talks to the lidar
// modelName     the chosen model
// upgrade       the window's UpgradeControl
// restartWanted()  the user wants a restart; whoever listens asks first
FocusScope {
    id: screen

    property var manager
    property string modelName: ""
    property var upgrade

    readonly property bool cmxSerial: manager.connectType === 2
    // What is being done right now, as a sentence; empty when nothing is.
    property string activity: ""
    readonly property bool waiting: activity.length > 0 || manager.isGetPBLVersion
    readonly property string notReady: !manager.IsConnected ? qsTr("Connect to the lidar first.")
                                     : manager.IsUpgrading ? qsTr("The lidar is being upgraded.")
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

    // Shows in `section` what was read; a reading that failed leaves what is shown as it is.
    function show(section, held) {
        if (held.length > 0)
            section.take(held);
    }

    // What one lidar told says nothing about the next.
    function forget() {
        for (const section of [network, destination, baudRate, safety])
            section.take([]);
    }

    // After the facts: two readers at once would only wait for each other.
    function readSettings() {
        if (manager.IsConnected && cmxSerial && !manager.isGetPBLVersion) {
            run(qsTr("Reading the lidar's settings…"), () => {
                show(network, manager.LumoGetNetConfig(true));
                show(destination, manager.LumoGetDestinationConfig(true));
            });
        }
    }

    Component.onCompleted: readSettings()

    Connections {
        target: screen.manager
        function onIsConnectedChanged() { screen.forget(); }
        function onIsGetPBLVersionChanged() { screen.readSettings(); }
    }

    ManagerFacts {
        id: facts

        manager: screen.manager
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

    ScrollArea {
        id: area

        function showEnd() {
            contentY = Math.max(0, contentHeight - height);
        }

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: heading.bottom
        anchors.topMargin: Theme.gap
        anchors.bottom: parent.bottom
        contentHeight: grid.implicitHeight + Theme.gapWide

        GridLayout {
            id: grid

            x: Theme.gapWide
            width: parent.width - 2 * Theme.gapWide
            columns: width > 2 * Theme.serialPanelWidth ? 2 : 1
            columnSpacing: Theme.gapWide
            rowSpacing: Theme.gapWide

            LumoSection {
                title: qsTr("Information")
                LumoFacts {
                    objectName: "lidarInfo"
                    width: parent.width
                    entries: screen.manager.LumoLidarInfo
                }
            }

            LumoSection {
                title: qsTr("Versions")
                LumoFacts {
                    objectName: "lidarVersions"
                    width: parent.width
                    entries: screen.manager.LumoLidarVersionInfo
                }
            }

            LumoNetwork {
                id: network

                obstacle: screen.notByCmx
                onReadWanted: screen.run(qsTr("Reading the network settings…"), () =>
                    screen.show(network, screen.manager.LumoGetNetConfig(false)))
                onSetWanted: screen.run(qsTr("Setting the network…"), () =>
                    screen.manager.LumoSetNet(ip, mask, gateway, vlanFlag, vlanId))
            }

            LumoOperation {
                obstacle: screen.notReady
                facts: screen.manager.LumoLidarInfo
                imuReachable: screen.cmxSerial
                onReturnModeWanted: screen.run(qsTr("Setting the return mode…"), () =>
                    screen.manager.LumoSetReturnMode(mode))
                onSpinRateWanted: screen.run(qsTr("Setting the spin rate…"), () =>
                    screen.manager.LumoSetSpinRate(rpm))
                onStandbyWanted: screen.run(qsTr("Setting the mode…"), () =>
                    screen.manager.LumoSetStandby(standby))
                onImuRangeWanted: screen.run(qsTr("Setting the motion sensor…"), () =>
                    screen.manager.KivaSetIMURange(angular, accel))
            }

            LumoDestination {
                id: destination

                obstacle: screen.notByCmx
                onReadWanted: screen.run(qsTr("Reading the destination…"), () =>
                    screen.show(destination, screen.manager.LumoGetDestinationConfig(false)))
                onSetWanted: screen.run(qsTr("Setting the destination…"), () =>
                    screen.manager.LumoSetDestinationIPandPort(ip, port))
            }

            LumoBaudRate {
                id: baudRate

                obstacle: screen.notByCmx
                onReadWanted: screen.run(qsTr("Reading the baud rate…"), () =>
                    screen.show(baudRate, [screen.manager.LumoGetBaudRate()].filter(rate => rate)))
                onSetWanted: screen.run(qsTr("Setting the baud rate…"), () =>
                    screen.manager.LumoSetBaudRateFromUI(rate))
            }

            LumoCalibration {
                id: calibration

                visible: facts.hasCalibration
                obstacle: screen.notReady
                onSaveWanted: screen.run(qsTr("Reading the calibration…"), () => {
                    screen.manager.LumoGetCorrection(folder);
                    calibration.lookAtFolder();
                })
            }

            LumoSafety {
                id: safety

                Layout.columnSpan: grid.columns
                Layout.fillHeight: false
                obstacle: screen.notReady
                onReadWanted: screen.run(qsTr("Reading the safety functions…"), () =>
                    screen.show(safety, screen.manager.LumoGetLidarFunctionSafety()))
            }

            LumoSection {
                title: qsTr("Firmware upgrade")
                Layout.columnSpan: grid.columns
                Layout.fillHeight: false

                UpgradePanel {
                    width: parent.width
                    upgrade: screen.upgrade
                    // What there is to see of an upgrade is brought into view when it changes.
                    onImplicitHeightChanged: if (upgrade.chosen || upgrade.running || upgrade.outcome)
                                                 Qt.callLater(area.showEnd)
                    onStartWanted: upgrade.start(0, 0, 0)
                }
            }
        }
    }
}
