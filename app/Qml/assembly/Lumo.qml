import QtQuick 2.15
import QtQuick.Layouts 1.15
import Tevron 1.0
import "../controls"
import "../theme"

// The screen of the lidars on a serial line, which have no pages: what they are, and the few things
// that can be read from them and set. What was read stays in sight, grey and with its time, until
// another lidar is connected; what was typed stays until it is set or taken back.
//
// manager       the object that talks to the lidar
// modelName     the chosen model
// upgrade       the window's UpgradeControl
// hasEdits      something was typed or chosen and not set
// restartWanted()  the user wants a restart; whoever listens asks first
// refused(reason)  what the user wanted cannot be done now
FocusScope {
    id: screen

    property var manager
    property string modelName: ""
    property var upgrade
    readonly property bool hasEdits: control.hasEdits
    readonly property bool cmxSerial: manager.connectType === 2
    readonly property bool connected: manager.IsConnected
    readonly property string notReady: !connected ? qsTr("Connect to the lidar first.")
                                     : manager.IsUpgrading ? qsTr("The lidar is being upgraded.") : ""
    readonly property string notByCmx: cmxSerial ? ""
        : qsTr("Not possible over a pair of serial ports. Choose the model's CMX variant to do this.")

    signal restartWanted()
    signal refused(string reason)

    function settle(next) { control.settle(next); }
    function discard() { control.discard(); }

    LumoControl {
        id: control

        manager: screen.manager
        obstacle: screen.notReady
        network: networkGroup
        destination: destinationGroup
        baudRate: baudRateGroup
        safety: safetyGroup
        operation: operationGroup
        onRefused: screen.refused(reason)
    }
    ManagerFacts {
        id: managerFacts

        manager: screen.manager
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
            description: screen.notReady.length > 0 ? screen.notReady
                       : screen.cmxSerial ? qsTr("Command frames over one serial line")
                                          : qsTr("Commands over RS-485, answers over the UART port")
        }
        LoadingWidget {
            objectName: "serialActivity"
            running: text.length > 0
            text: control.activity
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

            LumoFactsSection {
                title: qsTr("Information")
                name: "lidarInfo"
                connected: screen.connected
                entries: control.info
            }
            LumoFactsSection {
                title: qsTr("Versions")
                name: "lidarVersions"
                connected: screen.connected
                entries: control.versions
            }
            LumoNetwork {
                id: networkGroup

                obstacle: screen.notByCmx
                connected: screen.connected
                usable: control.ready
                onReadWanted: control.read(networkGroup)
                onSetWanted: control.set(networkGroup)
            }
            LumoOperation {
                id: operationGroup

                connected: screen.connected
                usable: control.ready
                facts: control.info
                imuReachable: screen.cmxSerial
                onSetWanted: control.setOrder(order)
            }
            LumoDestination {
                id: destinationGroup

                obstacle: screen.notByCmx
                connected: screen.connected
                usable: control.ready
                onReadWanted: control.read(destinationGroup)
                onSetWanted: control.set(destinationGroup)
            }
            LumoBaudRate {
                id: baudRateGroup

                obstacle: screen.notByCmx
                connected: screen.connected
                usable: control.ready
                onReadWanted: control.read(baudRateGroup)
                onSetWanted: control.set(baudRateGroup)
            }
            LumoCalibration {
                id: calibration

                visible: managerFacts.hasCalibration
                connected: screen.connected
                usable: control.ready
                onSaveWanted: control.run(qsTr("Reading the calibration…"), () => {
                    screen.manager.LumoGetCorrection(folder);
                    calibration.lookAtFolder();
                })
            }
            LumoSafety {
                id: safetyGroup

                Layout.columnSpan: grid.columns
                Layout.fillHeight: false
                connected: screen.connected
                usable: control.ready
                onReadWanted: control.read(safetyGroup)
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
