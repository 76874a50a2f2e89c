import QtQuick 2.15
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
        "save": () => pages.write(),
        "restart": () => link.restart(),
        "reset": () => manager.Reset(),
        "address": address => link.connectTo(address),
        "tab": tab => pages.selectTab(tab),
        "model": name => chooseModel(name),
        "disconnect": () => link.toggle(),
        "upgrading": () => leave("close"),
        "close": () => closeConfirmed()
    })

    // The user knows what closing the window costs and wants it.
    signal closeConfirmed()

    objectName: "mainScreen"
    implicitWidth: Theme.windowWidth
    implicitHeight: Theme.windowHeight
    focus: true

    // Does something that would lose what was typed on the page, once the user has settled that.
    function leave(purpose, argument) {
        pages.hasEdits ? messages.askEdits(purpose, argument) : go(purpose, argument);
    }

    function settleAndGo(answer, purpose, argument) {
        if (answer === "discard")
            pages.discard();
        if (answer === "discard" || pages.settle())
            go(purpose, argument);
    }

    function go(purpose, argument) {
        actions[purpose](argument);
    }

    function chooseModel(name) {
        work.log("Current selected model is " + name, "INFO");
        modelName = name;
        manager.InitConfigFileParser(name);
    }

    // The window is to be closed, which neither an upgrade nor an edit would survive.
    function askToClose() {
        if (upgradeControl.running)
            messages.askClose(upgradeControl.sending);
        else
            leave("close");
    }

    // Edits outlive a connection that comes or breaks; after one that the user ends nothing can
    // take them any more.
    function connectOrDisconnect() {
        if (manager.IsConnected && !manager.IsUpgrading && !link.connecting)
            leave("disconnect");
        else
            link.toggle();
    }

    // With the same settings as before; what is connected or connecting stays so.
    function reconnect() {
        if (!manager.IsConnected && !link.connecting)
            connectionBar.connectOrDisconnect();
    }

    Component.onCompleted: {
        const first = manager.getPVNowName() || connectionBar.firstModel("Orca");
        if (first === "Orca" || first === manager.getPVNowName())
            modelName = first;
        else
            chooseModel(first);
    }

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
        onNextAddressTold: messages.askNextAddress(address)
    }

    Shortcut { sequence: "Escape"; enabled: link.connecting; onActivated: link.cancel() }
    Shortcut { sequence: "F5"; onActivated: window.reconnect() }

    KeyboardKeeper { screen: window }

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
        watch: link.watch
        onModelChosen: window.leave("model", name)
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
            onLeaveAsked: window.leave("tab", tab)
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
        onEditsAnswered: window.settleAndGo(answer, purpose, argument)
        onLogged: work.log(text, tag)
        onConfirmed: window.go(purpose, argument)
    }
}
