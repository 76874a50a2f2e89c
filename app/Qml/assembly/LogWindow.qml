import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import Tevron 1.0
import "../controls"
import "../theme"

// The log: tagged lines, which stay at the end until scrolled up, with filters by tag and text.
//
// append(text, tag)     adds a line; the tag is written without brackets
// bytesFlow             whether raw bytes are logged; bytesFlowSwitched(on) asks for the change
FocusScope {
    id: log

    property bool bytesFlow: false
    readonly property var tags: ["INFO", "SUCCESS", "WARNING", "ERROR", "CMX", "BYTESFLOW"]

    signal bytesFlowSwitched(bool on)

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

    LogLines { id: lines; objectName: "logLines" }
    LogFilter {
        id: filter

        objectName: "logFilter"
        lines: lines
        text: search.text
    }
    Clipboard { id: clipboard }

    Row {
        id: tools

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.leftMargin: Theme.gapWide
        anchors.rightMargin: Theme.gapWide
        height: Theme.controlHeight + Theme.gap
        spacing: Theme.gap

        Text {
            anchors.verticalCenter: parent.verticalCenter
            rightPadding: Theme.gap
            text: qsTr("Log")
            font: Theme.titleFont
            color: Theme.textColor
        }

        Repeater {
            model: log.tags

            DefaultCheckBox {
                anchors.verticalCenter: parent.verticalCenter
                objectName: "logTag_" + modelData
                text: modelData
                font: Theme.captionFont
                checked: true
                hint: qsTr("Show the lines tagged [%1]").arg(modelData)
                onToggled: log.showTag(modelData, checked)
            }
        }
    }

    Row {
        anchors.right: parent.right
        anchors.rightMargin: Theme.gapWide
        anchors.verticalCenter: tools.verticalCenter
        spacing: Theme.gap

        DefaultSwitch {
            objectName: "bytesFlowSwitch"
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Raw bytes")
            value: log.bytesFlow
            hint: qsTr("Log the bytes of every exchange with the lidar")
            onSwitched: log.bytesFlowSwitched(on)
        }
        DefaultTextField {
            id: search

            objectName: "logSearch"
            anchors.verticalCenter: parent.verticalCenter
            width: Theme.fieldWidth
            placeholderText: qsTr("Filter text")
            label: qsTr("Show only lines that contain this text")
            hint: label
        }
        DefaultToolButton {
            objectName: "logCopy"
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Copy")
            hint: qsTr("Copy the lines shown to the clipboard (Ctrl+C)")
            onClicked: log.copy()
        }
        DefaultToolButton {
            objectName: "logClear"
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Clear")
            hint: qsTr("Empty the log")
            onClicked: lines.Clear()
        }
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

        delegate: Text {
            x: Theme.gapWide
            width: ListView.view.width - 2 * Theme.gapWide
            text: "[" + model.tag + "] " + model.text
            font: Theme.codeFont
            color: log.colorOf(model.tag)
            textFormat: Text.PlainText
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
