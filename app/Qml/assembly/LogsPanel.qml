import QtQuick 2.15
import QtQuick.Layouts 1.15
import Tevron 1.0
import "../controls"
import "../theme"

// What the lidar hands out whole, and the folder that it is saved to.
//
// manager  the object that downloads
FocusScope {
    id: panel

    property var manager
    readonly property string operationLog: "Operation Log"
    readonly property var offered: manager.logRepeaterModel
    property bool hasOperationLog: false
    readonly property bool offersAny: hasOperationLog || offered.length > 0
    // What is fetched on this very thread: its row says so before the window has to wait.
    property string fetching: ""
    property bool cancelled: false
    // What became of each download, by name.
    property var notes: ({})
    readonly property string obstacle: !manager.IsConnected ? qsTr("Connect to the lidar first.")
        : manager.IsUpgrading ? qsTr("Wait until the upgrade has ended.") : ""
    readonly property bool possible: obstacle.length === 0 && !manager.IsDownloadLog
        && fetching.length === 0 && watch.folderProblem.length === 0

    function note(name, text) {
        notes = Object.assign({}, notes, { [name]: text });
    }

    function savedNow() {
        return qsTr("Saved at %1").arg(new Date().toLocaleTimeString(Qt.locale(), "hh:mm:ss"));
    }

    function download(name) {
        if (!watch.LookAtFolder())
            return;
        note(name, "");
        cancelled = false;
        if (name !== operationLog) {
            fetching = name;
            begin.start();
        } else if (manager.DownloadOperationLog(watch.folderUrl) !== 0) {
            note(name, qsTr("Not begun"));
        }
    }

    function lookAtModel() {
        notes = {};
        hasOperationLog = manager.CheckVarExistsInConfigFileByName(operationLog);
    }

    Component.onCompleted: lookAtModel()

    Connections {
        target: panel.manager
        function onLidarModelChanged() { panel.lookAtModel(); }
        function onDownloadOperationLogFinished(result) {
            panel.note(panel.operationLog, result ? panel.savedNow()
                : panel.cancelled ? qsTr("Cancelled") : qsTr("Not saved, the log says why"));
        }
    }

    DownloadWatch {
        id: watch

        manager: panel.manager
    }

    Timer {
        id: begin

        interval: 50
        onTriggered: {
            const name = panel.fetching;
            const failed = panel.manager.DownloadLog(watch.folderUrl, name) !== 0;
            panel.note(name, failed ? qsTr("Not saved, the log says why") : panel.savedNow());
            panel.fetching = "";
            watch.LookAtFolder();
        }
    }

    SectionTitle {
        id: heading

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: Theme.gapWide
        text: qsTr("Logs")
        description: qsTr("What the lidar hands out whole, saved to files on this computer.")
    }

    LogsFolder {
        id: folder

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: heading.bottom
        anchors.margins: Theme.gapWide
        watch: watch
    }

    PlainText {
        id: reason

        objectName: "logsObstacle"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: folder.bottom
        anchors.margins: Theme.gapWide
        anchors.topMargin: visible ? Theme.gap : 0
        height: visible ? implicitHeight : 0
        visible: text.length > 0
        text: panel.obstacle
        color: Theme.warningColor
        wrapMode: Text.Wrap
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }

    ScrollArea {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: reason.bottom
        anchors.topMargin: Theme.gapWide
        anchors.bottom: parent.bottom
        contentHeight: entries.implicitHeight + Theme.gapWide

        Column {
            id: entries

            x: Theme.gapWide
            width: parent.width - 2 * Theme.gapWide
            spacing: Theme.gap

            LogsEntry {
                width: parent.width
                visible: panel.hasOperationLog
                name: panel.operationLog
                description: qsTr("Warnings and errors, four files in the folder operation_log")
                note: panel.notes[name] || ""
                activity: watch.progress
                progress: watch.fraction
                busy: watch.running
                possible: panel.possible
                cancellable: true
                cancelling: watch.cancelling
                onWanted: panel.download(name)
                onUnwanted: {
                    panel.cancelled = true;
                    watch.Cancel();
                }
            }
            Repeater {
                model: panel.offered

                LogsEntry {
                    width: entries.width
                    name: modelData
                    note: panel.notes[name] || ""
                    activity: qsTr("Fetching…")
                    busy: panel.fetching === name
                    possible: panel.possible
                    onWanted: panel.download(name)
                }
            }
        }
    }
}
