import QtQuick 2.15
import "../controls"
import "../theme"

// The line above the log: which tags are shown, raw bytes or not, and the text to look for.
FocusScope {
    id: tools

    property var tags: []
    property bool bytesFlow: false
    readonly property alias filterText: search.text

    signal tagSwitched(string tag, bool shown)
    signal bytesFlowSwitched(bool on)
    signal copyWanted()
    signal clearWanted()
    signal foldWanted()

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

            DefaultCheckBox {
                anchors.verticalCenter: parent.verticalCenter
                objectName: "logTag_" + modelData
                text: modelData
                font: Theme.captionFont
                checked: true
                hint: qsTr("Show the lines tagged [%1]").arg(modelData)
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
            onClicked: tools.copyWanted()
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
