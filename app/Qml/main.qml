import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "theme"
import "controls"
import "assembly"

// The whole window: the connection at the top, the pages of the lidar beside the command console,
// the log below. Everything behind the screens is reached through "tevron_manager", the one name
// that the program publishes here.
FocusScope {
    id: window

    readonly property var manager: tevron_manager
    readonly property string programName: "Tevron"
    property string modelName: ""
    property bool bytesFlow: false

    // The user knows what closing the window costs and wants it.
    signal closeConfirmed()

    objectName: "mainScreen"
    implicitWidth: Theme.windowWidth
    implicitHeight: Theme.windowHeight
    focus: true

    function chooseModel(name) {
        logWindow.append("Current selected model is " + name, "INFO");
        modelName = name;
        manager.InitConfigFileParser(name);
    }

    function sendCommand(command, payload) {
        if (manager.IsConnected)
            manager.SendCommand(command, payload);
        else
            messages.refuse(qsTr("Please connect to lidar first"));
    }

    // The window is to be closed, which an upgrade would not survive.
    function askToClose() {
        messages.askClose(upgradeControl.sending);
    }

    function confirmed(purpose) {
        switch (purpose) {
        case "save":
            pages.write();
            break;
        case "restart":
            manager.Restart();
            break;
        case "reset":
            manager.Reset();
            break;
        case "close":
            closeConfirmed();
            break;
        }
    }

    Component.onCompleted: modelName = manager.getPVNowName() || "Orca"

    Connections {
        target: window.manager
        function onSendLogMessage(msg, type) { logWindow.append(msg, type); }
    }

    LinkControl {
        id: link

        manager: window.manager
        modelName: window.modelName
        tab: pages.currentTab
        upgrading: upgradeControl.running
        onRefused: messages.refuse(reason)
        onWarned: messages.warnAboutModel(text)
    }

    UpgradeControl {
        id: upgradeControl

        manager: window.manager
        modelName: window.modelName
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.windowColor
    }

    ConnectionBar {
        id: connectionBar

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        programName: window.programName
        manager: window.manager
        modelName: window.modelName
        connecting: link.connecting
        onModelChosen: window.chooseModel(name)
        onConnectClicked: link.toggle()
        onRestartWanted: messages.askRestart()
        onResetWanted: messages.askReset()
        onAboutWanted: messages.showAbout()
    }

    T.SplitView {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: connectionBar.bottom
        anchors.bottom: udpBar.top
        orientation: Qt.Vertical
        handle: SplitHandle {}

        T.SplitView {
            T.SplitView.fillHeight: true
            T.SplitView.minimumHeight: Theme.rowHeight * 8
            orientation: Qt.Horizontal
            handle: SplitHandle {}

            PageArea {
                id: pages

                T.SplitView.fillWidth: true
                T.SplitView.minimumWidth: Theme.serialPanelWidth
                manager: window.manager
                modelName: window.modelName
                upgrade: upgradeControl
                onRefused: messages.refuse(reason)
                onConfirmationWanted: messages.askSave(names)
                onRestartWanted: messages.askRestart()
            }

            GetCmdWidget {
                objectName: "commandConsole"
                T.SplitView.preferredWidth: Theme.consoleWidth
                T.SplitView.minimumWidth: Theme.consoleWidth / 2
                replyHeader: window.manager.SendCmxCommandReturnHeader
                replyPayload: window.manager.SendCmxCommandReturnPayload
                commandCount: window.manager.CommandLogCnt
                history: window.manager.SendCommandHistory
                onSendRequested: window.sendCommand(command, payload)
                onCopyRequested: logWindow.copyText(text)
            }
        }

        LogWindow {
            id: logWindow

            objectName: "logWindow"
            T.SplitView.preferredHeight: Theme.logHeight
            T.SplitView.minimumHeight: 2 * Theme.controlHeight
            bytesFlow: window.bytesFlow
            onBytesFlowSwitched: {
                window.bytesFlow = on;
                window.manager.SetLogBytesFlowStatus(on);
            }
        }
    }

    UdpWatchBar {
        id: udpBar

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        manager: window.manager
        port: window.manager.udpPort
        onPortEntered: window.manager.udpPort = text
    }

    Messages {
        id: messages

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: connectionBar.bottom
        anchors.bottom: udpBar.top
        manager: window.manager
        programName: window.programName
        modelName: window.modelName
        onLogged: logWindow.append(text, tag)
        onConfirmed: window.confirmed(purpose)
    }
}
