import QtQuick 2.15
import "../controls"
import "../theme"

// The line above the log: which tags are shown, raw bytes or not, and the text to look for.
FocusScope {
    id: tools

    property var tags: []
    property var hiddenTags: []
    property var colorOf: tag => Theme.textColor
    property bool bytesFlow: false
    property bool hasErrors: false
    readonly property alias filterText: search.text

    signal tagSwitched(string tag, bool shown)
    signal bytesFlowSwitched(bool on)
    signal lastErrorWanted()
    signal copyWanted()
    signal saveWanted()
    signal clearWanted()
    signal foldWanted()

    function clearFilterText() {
        search.text = "";
    }

    implicitHeight: Theme.controlHeight + Theme.gap

    Row {
        anchors.left: parent.left
        anchors.leftMargin: Theme.gapWide
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.gap

        PlainText {
            anchors.verticalCenter: parent.verticalCenter
            rightPadding: Theme.gap
            text: qsTr("Log")
            font: Theme.titleFont
        }

        Repeater {
            model: tools.tags

            ToggleChip {
                anchors.verticalCenter: parent.verticalCenter
                objectName: "logTag_" + modelData
                text: modelData
                ink: tools.colorOf(modelData)
                label: qsTr("Show the lines tagged [%1]").arg(modelData)
                checked: tools.hiddenTags.indexOf(modelData) < 0
                onToggled: tools.tagSwitched(modelData, checked)
            }
        }
    }

    Row {
        anchors.right: parent.right
        anchors.rightMargin: Theme.gapWide
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.gap

        DefaultSwitch {
            objectName: "bytesFlowSwitch"
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Raw bytes")
            value: tools.bytesFlow
            hint: qsTr("Log the bytes of every exchange with the lidar")
            onSwitched: tools.bytesFlowSwitched(on)
        }
        DefaultTextField {
            id: search

            objectName: "logSearch"
            anchors.verticalCenter: parent.verticalCenter
            width: Theme.logSearchWidth
            placeholderText: qsTr("Filter text")
            label: qsTr("Show only lines that contain this text")
            hint: label
        }
        DefaultToolButton {
            objectName: "logLastError"
            anchors.verticalCenter: parent.verticalCenter
            enabled: tools.hasErrors
            text: qsTr("Last error")
            hint: qsTr("Go to the last error (Shift+F12)")
            onClicked: tools.lastErrorWanted()
        }
        DefaultToolButton {
            objectName: "logCopy"
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Copy")
            hint: qsTr("Copy the lines selected, or else all that are shown (Ctrl+C)")
            onClicked: tools.copyWanted()
        }
        DefaultToolButton {
            objectName: "logSave"
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Save…")
            hint: qsTr("Save the lines shown to a file")
            onClicked: tools.saveWanted()
        }
        DefaultToolButton {
            objectName: "logClear"
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Clear")
            hint: qsTr("Empty the log")
            onClicked: tools.clearWanted()
        }
        DefaultToolButton {
            objectName: "logFold"
            anchors.verticalCenter: parent.verticalCenter
            icon.source: "../icons/chevron.svg"
            label: qsTr("Fold the log (F12)")
            onClicked: tools.foldWanted()
        }
    }
}
