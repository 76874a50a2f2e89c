import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import Tevron 1.0
import "../controls"
import "../theme"

// The log: tagged lines, which stay at the end until scrolled up, with filters by tag and text.
//
// append(text, tag)     adds a line; the tag is written without brackets
// lines                 all of them
// bytesFlow             whether raw bytes are logged; bytesFlowSwitched(on) asks for the change
// foldWanted()          the user wants the log out of the way
FocusScope {
    id: log

    property bool bytesFlow: false
    readonly property var tags: ["INFO", "SUCCESS", "WARNING", "ERROR", "CMX", "BYTESFLOW"]

    readonly property alias lines: lines

    signal bytesFlowSwitched(bool on)
    signal foldWanted()

    function append(text, tag) {
        lines.Append(text, tag);
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
        copyText(filter.ShownText());
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

    LogTools {
        id: tools

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        tags: log.tags
        bytesFlow: log.bytesFlow
        onTagSwitched: log.showTag(tag, shown)
        onBytesFlowSwitched: log.bytesFlowSwitched(on)
        onCopyWanted: log.copy()
        onClearWanted: lines.Clear()
        onFoldWanted: log.foldWanted()
    }

    Rectangle {
        anchors.fill: view
        color: Theme.wellColor
    }

    ListView {
        id: view

        // Follows the newest line until the user scrolls up, and again once at the end.
        property bool following: true

        objectName: "logView"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: tools.bottom
        anchors.bottom: parent.bottom
        topMargin: Theme.gapTiny
        bottomMargin: Theme.gapTiny
        clip: true
        focus: true
        activeFocusOnTab: true
        model: filter
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: DefaultScrollBar { onPressedChanged: view.following = view.atYEnd }

        onCountChanged: if (following) Qt.callLater(positionViewAtEnd)
        onHeightChanged: if (following) Qt.callLater(positionViewAtEnd)
        onMovementStarted: following = false
        onMovementEnded: following = atYEnd

        Accessible.role: Accessible.List
        Accessible.name: qsTr("Log lines")

        Keys.onPressed: {
            if (event.matches(StandardKey.Copy)) {
                log.copy();
            } else if (event.key === Qt.Key_PageUp || event.key === Qt.Key_PageDown) {
                const step = event.key === Qt.Key_PageUp ? -height : height;
                contentY = Math.max(originY, Math.min(originY + contentHeight - height,
                                                      contentY + step));
                following = atYEnd;
            } else if (event.key === Qt.Key_End) {
                following = true;
                positionViewAtEnd();
            } else {
                return;
            }
            event.accepted = true;
        }

        delegate: PlainText {
            x: Theme.gapWide
            width: ListView.view.width - 2 * Theme.gapWide
            text: model.shown
            font: Theme.codeFont
            color: log.colorOf(model.tag)
            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
            Accessible.role: Accessible.ListItem
            Accessible.name: text
        }

        FocusRing {
            anchors.margins: 0
            shown: view.activeFocus
        }
    }

    EmptyNote {
        anchors.centerIn: view
        visible: view.count === 0
        text: lines.count === 0 ? qsTr("Nothing has been logged yet.")
                                : qsTr("No line passes the filter.")
    }
}
