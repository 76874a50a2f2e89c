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
    readonly property bool network: manager.connectType === 0
    property string modelName: ""
    property int currentTab: 0
    property bool bytesFlow: false
    property var successes: []

    objectName: "mainScreen"
    implicitWidth: Theme.windowWidth
    implicitHeight: Theme.windowHeight
    focus: true

    function chooseModel(name) {
        logWindow.append("Current selected model is " + name, "INFO");
        modelName = name;
        manager.InitConfigFileParser(name);
    }

    // Edits belong to the page they were made on: another page starts without any.
    function selectTab(tab) {
        manager.ClearSetMap();
        manager.setModuleIndexUse(tab);
        manager.GetLidarModuleInfo(tab);
        currentTab = tab;
    }

    function showTabs() {
        tabs.titles = manager.level1List;
    }

    function rebuild() {
        showTabs();
        tabs.currentIndex = 0;
        currentTab = 0;
        manager.setModuleIndexUse(0);
    }

    function showError() {
        const text = manager.errorMessage;
        if (text === "") {
            console.log("errorMessageChanged: no message");
            return;
        }
        logWindow.append(text, "ERROR");
        errorBox.show(text);
        manager.setErrorMsg("");
    }

    function showSuccess() {
        const text = manager.successMessage;
        if (text === "") {
            console.log("successMessageChanged: no message");
            return;
        }
        logWindow.append(text, "SUCCESS");
        successes = successes.concat([text]);
        Qt.callLater(showSuccesses);
        manager.setSuccessMsg("");
    }

    // What one action of the user brought, in one box: saving a page reports every command.
    function showSuccesses() {
        const text = successes.join("\n");
        successBox.show(text, text.indexOf("restart the lidar") < 0 ? ""
            : qsTr("The page shows what the lidar holds now. The gear button restarts it."));
        successes = [];
    }

    function sendCommand(command, payload) {
        if (manager.IsConnected)
            manager.SendCommand(command, payload);
        else
            errorBox.show(qsTr("Please connect to lidar first"));
    }

    function confirmed(purpose) {
        switch (purpose) {
        case "save":
            page.write();
            break;
        case "restart":
            manager.Restart();
            break;
        case "reset":
            manager.Reset();
            break;
        }
    }

    function askRestart() {
        question.ask("restart", qsTr("Restart the lidar?"),
                     qsTr("The lidar restarts and does not measure until it is up again."),
                     qsTr("The connection may be lost; press Connect once the lidar is back."),
                     qsTr("Restart"));
    }

    function askReset() {
        question.ask("reset", qsTr("Reset to factory settings?"),
                     qsTr("Every setting on the lidar goes back to its factory value."),
                     qsTr("This cannot be undone. The address may change; press Connect again then."),
                     qsTr("Reset"));
    }

    Component.onCompleted: {
        modelName = manager.getPVNowName() !== "" ? manager.getPVNowName() : "Orca";
        rebuild();
    }

    Connections {
        target: window.manager
        function onErrorMessageChanged() { window.showError(); }
        function onSuccessMessageChanged() { window.showSuccess(); }
        function onSendLogMessage(msg, type) { logWindow.append(msg, type); }
        function onLidarModelChanged() { window.rebuild(); }
        function onLidarClearModel() { tabs.titles = []; }
        function onLidarShowModel() { window.showTabs(); }
        function onIsGetPBLVersionChanged() { serialBox.tell(window.manager.isGetPBLVersion); }
    }

    LinkControl {
        id: link

        manager: window.manager
        modelName: window.modelName
        tab: window.currentTab
        onRefused: errorBox.show(reason)
        onWarned: {
            logWindow.append(text, "WARNING");
            question.warn(qsTr("Check the lidar's model"), text, "");
        }
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
        onRestartWanted: window.askRestart()
        onResetWanted: window.askReset()
        onAboutWanted: aboutBox.open()
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

            Item {
                T.SplitView.fillWidth: true
                T.SplitView.minimumWidth: Theme.serialPanelWidth

                TabWidget {
                    id: tabs

                    objectName: "pageTabs"
                    anchors.left: parent.left
                    anchors.right: parent.right
                    anchors.leftMargin: Theme.gap
                    anchors.rightMargin: Theme.gap
                    visible: window.network
                    marked: page.hasEdits ? [window.currentTab] : []
                    onSelected: window.selectTab(index)
                }

                PageView {
                    id: page

                    objectName: "pageView"
                    anchors.top: tabs.bottom
                    anchors.left: parent.left
                    anchors.right: parent.right
                    anchors.bottom: parent.bottom
                    visible: window.network
                    manager: window.manager
                    tab: window.currentTab
                    title: tabs.titles.length > window.currentTab ? tabs.titles[window.currentTab] : ""
                    onRefused: errorBox.show(reason)
                    onConfirmationWanted: question.ask("save", qsTr("Values out of range"),
                        qsTr("These values are out of range or badly written:\n%1").arg(names.join("\n")),
                        qsTr("The lidar may refuse them. Continue writes them all the same; Cancel goes back to the page."),
                        qsTr("Continue"))
                }

                Loader {
                    anchors.fill: parent
                    active: !window.network
                    sourceComponent: Lumo {
                        manager: window.manager
                        modelName: window.modelName
                        onRestartWanted: window.askRestart()
                    }
                }
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
        port: window.manager.udpPort
        onPortEntered: window.manager.udpPort = text
    }

    ErrorInfoWindow { id: errorBox }
    SuccessInfoWindow { id: successBox }
    SerialBusyWindow { id: serialBox }
    MessageWindow {
        id: question

        onAccepted: window.confirmed(purpose)
    }
    AboutWindow {
        id: aboutBox

        applicationName: window.programName
        details: [qsTr("Model in use: %1").arg(window.modelName)]
    }
}
