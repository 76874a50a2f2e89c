import QtQuick 2.15
import Tevron 1.0
import "theme"
import "assembly"
import "controls"

// The whole window: the connection at the top, the pages of the lidar below it with the command
// console and the log around them. Everything behind the screens is reached through
// "tevron_manager", the one name that the program publishes here.
FocusScope {
    id: window

    readonly property var manager: tevron_manager
    readonly property string programName: "Tevron"
    property string modelName: ""
    readonly property bool hasEdits: pages.hasEdits

    // What follows once nothing speaks against it any more, by its purpose.
    readonly property var actions: ({
        "save": waiting => leaving.write(waiting),
        "restart": () => link.restart(),
        "reset": () => settings.keepAndGo("reset"),
        "apply": () => settings.keepAndGo("apply"),
        "unkept": purpose => settings.go(purpose),
        "address": address => link.connectTo(address),
        "tab": tab => pages.selectTab(tab),
        "model": lidar => choose(lidar),
        "disconnect": () => link.disconnect(),
        "upgrading": () => leaving.leave("close"),
        "close": () => closeConfirmed()
    })

    // The user knows what closing the window costs and wants it.
    signal closeConfirmed()

    objectName: "mainScreen"
    implicitWidth: Theme.windowWidth
    implicitHeight: Theme.windowHeight
    focus: true

    // The model of this lidar, and how it is reached where that is told with it.
    function choose(lidar) {
        work.log("Current selected model is " + lidar.model, "INFO");
        modelName = lidar.model;
        manager.InitConfigFileParser(lidar.model);
        if (lidar.address)
            connectionBar.reach(lidar);
    }

    // The window is to be closed, which no upgrade, file or edit would survive.
    function askToClose() {
        if (upgradeControl.running)
            messages.askClose(upgradeControl.sending);
        else if (link.applying || settings.watch.preparing)
            messages.askCloseApplying(link.applying);
        else
            leaving.leave("close");
    }

    // Edits outlive a connection that comes or breaks; after one that the user ends nothing can
    // take them any more.
    function connectOrDisconnect() {
        if (manager.IsConnected && !manager.IsUpgrading && !link.connecting && !link.applying)
            leaving.leave("disconnect");
        else
            link.toggle();
    }

    Component.onCompleted: {
        const first = manager.getPVNowName() || connectionBar.firstModel("Orca");
        if (first === "Orca" || first === manager.getPVNowName())
            modelName = first;
        else
            choose({ "model": first });
    }

    Connections {
        target: window.manager
        function onSendLogMessage(msg, type) { work.log(msg, type); }
    }

    LeaveControl {
        id: leaving

        pages: pages
        actions: window.actions
        onAsked: messages.askEdits(purpose, argument)
    }

    SettingsControl {
        id: settings

        manager: window.manager
        onApplyAsked: leaving.leave("apply")
        onSnapshotMissed: messages.askUnkept(purpose, problem)
    }

    LinkControl {
        id: link

        manager: window.manager
        modelName: window.modelName
        tab: pages.currentTab
        upgrading: upgradeControl.running
        applying: settings.watch.applying
        onRefused: messages.refuse(reason)
        onWarned: messages.warnAboutModel(text)
        onNextAddressTold: messages.askNextAddress(address)
    }

    Shortcut { sequence: "F5"; onActivated: connectionBar.reconnect() }

    KeyboardKeeper { screen: window }

    UpgradeControl {
        id: upgradeControl

        manager: window.manager
        modelName: window.modelName
    }

    Rectangle { anchors.fill: parent; color: Theme.windowColor }

    ConnectionBar {
        id: connectionBar

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        programName: window.programName
        manager: window.manager
        modelName: window.modelName
        watch: link.watch
        onLidarChosen: leaving.leave("model", lidar)
        applying: settings.watch.applying
        onSettingsWanted: settings.start(what, work.lines)
        onConnectClicked: window.connectOrDisconnect()
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
        onReconnectWanted: connectionBar.reconnect()
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
            settings: settings
            onRefused: messages.refuse(reason)
            onConfirmationWanted: messages.askSave(names, leaving.following)
            onRestartWanted: messages.askRestart()
            onLeaveAsked: leaving.leave("tab", tab)
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
        // What a page's Save brought stands beside its button.
        logSuccesses: pages.saving
        onEditsAnswered: leaving.settleAndGo(answer, purpose, argument)
        onLogged: work.log(text, tag)
        onConfirmed: leaving.go(purpose, argument)
    }
}
