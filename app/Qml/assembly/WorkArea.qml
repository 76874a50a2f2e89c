import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import QtQuick.Window 2.15
import Tevron 1.0
import "../controls"
import "../theme"

// What lies below the top bar: the page, which has the room, the command console at its side, the
// log below, and the line at the bottom. Console and log fold away, and stay so.
//
// log(text, tag)    a line for the log; the tag is written without brackets
// lines             those of the log
// refused(reason)   what the user wanted cannot be done now
FocusScope {
    id: area

    default property alias page: room.data
    property var manager
    property bool bytesFlow: false
    readonly property var lines: logWindow.lines

    signal refused(string reason)

    function log(text, tag) { logWindow.append(text, tag); }

    function showConsole(open) {
        handOver(consoleWidget, open, () => kept.consoleFolded = !open);
    }

    function showLog(open) {
        handOver(logWindow, open, () => kept.logFolded = !open);
    }

    // The keyboard follows into an area that opens, and goes back to where it was when that folds.
    function handOver(pane, open, change) {
        const leaving = pane.activeFocus;
        if (open)
            cameFrom = Window.activeFocusItem;
        change();
        if (open)
            pane.forceActiveFocus(Qt.ShortcutFocusReason);
        else if (leaving && cameFrom && cameFrom.visible)
            cameFrom.forceActiveFocus(Qt.ShortcutFocusReason);
        else if (leaving)
            room.forceActiveFocus(Qt.ShortcutFocusReason);
    }

    property Item cameFrom: null

    WindowState { id: kept }

    Shortcut {
        sequence: "F11"
        onActivated: area.showConsole(kept.consoleFolded)
    }
    Shortcut {
        sequence: "F12"
        onActivated: area.showLog(kept.logFolded)
    }
    Shortcut {
        sequence: "Shift+F12"
        onActivated: {
            area.showLog(true);
            logWindow.showLastError();
        }
    }

    T.SplitView {
        id: rows

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: bottomLine.top
        orientation: Qt.Vertical
        handle: SplitHandle {
            objectName: "logBorder"
            pane: logWindow
            label: qsTr("Border of the log")
            onSized: kept.logHeight = size
        }
        onResizingChanged: if (!resizing) kept.logHeight = logWindow.height

        Item {
            id: upper

            T.SplitView.fillHeight: true
            T.SplitView.minimumHeight: Theme.pageMinimumHeight

            T.SplitView {
                id: columns

                anchors.left: parent.left
                anchors.right: strip.visible ? strip.left : parent.right
                anchors.top: parent.top
                anchors.bottom: parent.bottom
                orientation: Qt.Horizontal
                handle: SplitHandle {
                    objectName: "consoleBorder"
                    pane: consoleWidget
                    label: qsTr("Border of the console")
                    onSized: kept.consoleWidth = size
                }
                onResizingChanged: if (!resizing) kept.consoleWidth = consoleWidget.width

                FocusScope {
                    id: room

                    T.SplitView.fillWidth: true
                    T.SplitView.minimumWidth: Theme.pageMinimumWidth

                    // Painted anew when the room grows: the software renderer would leave the border
                    // of an area that folds where it was.
                    Rectangle {
                        anchors.fill: parent
                        color: Theme.windowColor
                    }
                }

                GetCmdWidget {
                    id: consoleWidget

                    objectName: "commandConsole"
                    visible: !kept.consoleFolded
                    T.SplitView.preferredWidth: kept.consoleWidth || Theme.consoleWidth
                    T.SplitView.minimumWidth: Theme.consoleMinimumWidth
                    T.SplitView.maximumWidth: columns.width - Theme.pageMinimumWidth - Theme.gapTiny
                    manager: area.manager
                    colorOf: logWindow.colorOf
                    onLogged: logWindow.append(text, tag)
                    onRefused: area.refused(reason)
                    onCopyRequested: logWindow.copyText(text)
                    onFoldWanted: area.showConsole(false)
                }
            }

            FoldStrip {
                id: strip

                objectName: "consoleStrip"
                anchors.right: parent.right
                anchors.top: parent.top
                anchors.bottom: parent.bottom
                visible: kept.consoleFolded
                text: qsTr("Console")
                key: "F11"
                onClicked: area.showConsole(true)
            }
        }

        LogWindow {
            id: logWindow

            objectName: "logWindow"
            visible: !kept.logFolded
            T.SplitView.preferredHeight: kept.logHeight || Theme.logHeight
            T.SplitView.minimumHeight: Theme.logMinimumHeight
            T.SplitView.maximumHeight: rows.height - Theme.pageMinimumHeight - Theme.gapTiny
            bytesFlow: area.bytesFlow
            onBytesFlowSwitched: {
                area.bytesFlow = on;
                area.manager.SetLogBytesFlowStatus(on);
            }
            onFoldWanted: area.showLog(false)
            onRefused: area.refused(reason)
        }
    }

    Item {
        id: bottomLine

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: Theme.stripWidth

        LogLine {
            objectName: "logLine"
            anchors.left: parent.left
            anchors.right: udpBar.left
            height: parent.height
            visible: kept.logFolded
            lines: logWindow.lines
            ink: logWindow.colorOf(lines.lastTag)
            onClicked: area.showLog(true)
        }

        UdpWatchBar {
            id: udpBar

            anchors.right: parent.right
            width: kept.logFolded ? Math.min(implicitWidth, parent.width / 2) : parent.width
            height: parent.height
            brief: kept.logFolded
            manager: area.manager
            port: area.manager.udpPort
            onPortEntered: area.manager.udpPort = text
        }
    }
}
