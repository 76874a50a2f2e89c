import QtQuick 2.15
import Tevron 1.0
import "../controls"
import "../theme"

// The log: tagged lines with their time, filters by tag and text, and ways to take lines along.
//
// append(text, tag)     adds a line; the tag is written without brackets
// showLastError()       goes to it, whatever the filters leave out
// lines                 all of them
// bytesFlow             whether raw bytes are logged; bytesFlowSwitched(on) asks for the change
// foldWanted()          the user wants the log out of the way
// refused(reason)       what the user wanted cannot be done
FocusScope {
    id: log

    property bool bytesFlow: false
    readonly property alias lines: lines
    readonly property var tags: ["INFO", "SUCCESS", "WARNING", "ERROR", "CMX", "BYTESFLOW"]

    signal bytesFlowSwitched(bool on)
    signal foldWanted()
    signal refused(string reason)

    function append(text, tag) {
        lines.Append(text, tag);
    }

    function showLastError() {
        if (filter.LastRowOf("ERROR") < 0) {
            tools.clearFilterText();
            showTag("ERROR", true);
        }
        const row = filter.LastRowOf("ERROR");
        if (row >= 0)
            view.showRow(row);
        view.forceActiveFocus(Qt.ShortcutFocusReason);
    }

    function colorOf(tag) {
        switch (tag) {
        case "SUCCESS": return Theme.successColor;
        case "WARNING": return Theme.warningColor;
        case "ERROR": return Theme.errorColor;
        case "CMX": return Theme.accentColor;
        case "BYTESFLOW": return Theme.quietTextColor;
        default: return Theme.textColor;
        }
    }

    function showTag(tag, shown) {
        const others = filter.hiddenTags.filter(hidden => hidden !== tag);
        filter.hiddenTags = shown ? others : others.concat([tag]);
    }

    function copy() {
        copyText(view.selection.Text() || filter.ShownText());
    }

    function copyText(text) {
        clipboard.Copy(text);
    }

    LogLines {
        id: lines

        objectName: "logLines"
        inView: log.visible
    }
    LogFilter {
        id: filter

        objectName: "logFilter"
        lines: lines
        text: tools.filterText
    }
    Clipboard { id: clipboard }
    SaveText {
        id: saver

        onSaved: log.append(qsTr("The log is saved: %1").arg(path), "INFO")
        onRefused: log.refused(reason)
    }

    LogTools {
        id: tools

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        tags: log.tags
        hiddenTags: filter.hiddenTags
        colorOf: log.colorOf
        bytesFlow: log.bytesFlow
        hasErrors: lines.hasErrors
        onTagSwitched: log.showTag(tag, shown)
        onBytesFlowSwitched: log.bytesFlowSwitched(on)
        onLastErrorWanted: log.showLastError()
        onCopyWanted: log.copy()
        onSaveWanted: saver.save(qsTr("Save the lines shown"), "Tevron_log_%1.txt", filter.ShownText())
        onClearWanted: lines.Clear()
        onFoldWanted: log.foldWanted()
    }

    Rectangle {
        anchors.fill: view
        color: Theme.wellColor
    }

    LogView {
        id: view

        objectName: "logView"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: tools.bottom
        anchors.bottom: parent.bottom
        filter: filter
        colorOf: log.colorOf
        onCopyWanted: log.copy()
    }

    EmptyNote {
        anchors.centerIn: view
        visible: view.count === 0
        text: lines.count === 0 ? qsTr("Nothing has been logged yet.")
                                : qsTr("No line passes the filter.")
    }
}
