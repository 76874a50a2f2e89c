import QtQuick 2.15
import "theme"
import "assembly"

// The whole window: the connection at the top, the pages of the lidar below it with the command
// console and the log around them. Everything behind the screens is reached through
// "tevron_manager", the one name that the program publishes here.
FocusScope {
    id: window

    readonly property var manager: tevron_manager
    readonly property string programName: "Tevron"
    property string modelName: ""

    // The user knows what closing the window costs and wants it.
    signal closeConfirmed()

    objectName: "mainScreen"
    implicitWidth: Theme.windowWidth
    implicitHeight: Theme.windowHeight
    focus: true

    function chooseModel(name) {
        work.log("Current selected model is " + name, "INFO");
        modelName = name;
        manager.InitConfigFileParser(name);
    }

    // The window is to be closed, which an upgrade would not survive.
    function askToClose() {
        messages.askClose(upgradeControl.sending);
    }

    // With the same settings as before; what is connected or connecting stays so.
    function reconnect() {
        if (!manager.IsConnected && !link.connecting)
            connectionBar.connectOrDisconnect();
    }

    function confirmed(purpose, argument) {
        switch (purpose) {
        case "save":
            pages.write();
            break;
        case "restart":
            link.restart();
            break;
        case "place":
            link.connectTo(argument.address, argument.port);
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
        function onSendLogMessage(msg, type) { work.log(msg, type); }
    }

    LinkControl {
        id: link

        manager: window.manager
        modelName: window.modelName
        tab: pages.currentTab
        upgrading: upgradeControl.running
        onRefused: messages.refuse(reason)
        onWarned: messages.warnAboutModel(text)
        onNextPlaceTold: messages.askNextPlace(address, port)
    }

    Shortcut {
        sequence: "Escape"
        enabled: link.connecting
        onActivated: link.cancel()
    }
    Shortcut {
        sequence: "F5"
        onActivated: window.reconnect()
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
        onCancelClicked: link.cancel()
        onRestartWanted: messages.askRestart()
        onResetWanted: messages.askReset()
        onAboutWanted: messages.showAbout()
    }

    LinkStrip {
        id: linkStrip

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: connectionBar.bottom
        manager: window.manager
        watch: link.watch
        onReconnectWanted: window.reconnect()
        onCancelWanted: link.cancel()
    }

    WorkArea {
        id: work

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: linkStrip.bottom
        anchors.bottom: parent.bottom
        manager: window.manager
        onRefused: messages.refuse(reason)

        PageArea {
            id: pages

            anchors.fill: parent
            manager: window.manager
            modelName: window.modelName
            upgrade: upgradeControl
            onRefused: messages.refuse(reason)
            onConfirmationWanted: messages.askSave(names)
            onRestartWanted: messages.askRestart()
            onLeaveAsked: pages.selectTab(tab)
        }
    }

    Messages {
        id: messages

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: connectionBar.bottom
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.stripWidth
        manager: window.manager
        watch: link.watch
        programName: window.programName
        modelName: window.modelName
        onLogged: work.log(text, tag)
        onConfirmed: window.confirmed(purpose, argument)
    }
}
