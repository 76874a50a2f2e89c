import QtQuick 2.15
import QtQuick.Layouts 1.15
import QtQuick.Templates 2.15 as T
import "../controls"
import "../theme"

// The command console: a command and a payload in hexadecimal, the reply, and the last commands.
// Up and Down in either field walk through the history.
//
// replyHeader, replyPayload, commandCount, history   what to show; an entry of `history` has
//                                       record_time, send_cmd_history and send_payload_history
// sendRequested(command, payload)       the user wants to send
// copyRequested(text)                   the user wants the text on the clipboard
// foldWanted()                          the user wants the console out of the way
FocusScope {
    id: widget

    property string replyHeader: ""
    property string replyPayload: ""
    property int commandCount: 0
    property var history: []
    // The history entry that the fields show; -1: what the user typed.
    property int recalled: -1

    signal sendRequested(string command, string payload)
    signal copyRequested(string text)
    signal foldWanted()

    function send() {
        sendRequested(commandField.text, payloadField.text);
    }

    function recall(entry) {
        if (entry < -1 || entry >= history.length)
            return;
        recalled = entry;
        commandField.text = entry < 0 ? "" : history[entry].send_cmd_history;
        payloadField.text = entry < 0 ? "" : history[entry].send_payload_history;
    }

    function textOf(entry) {
        return (entry.send_cmd_history + " " + entry.send_payload_history).trim();
    }

    onHistoryChanged: recalled = -1

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.gapWide
        spacing: Theme.gap

        RowLayout {
            spacing: Theme.gap

            SectionTitle {
                Layout.fillWidth: true
                text: qsTr("Command console")
                description: qsTr("Commands logged: %1").arg(widget.commandCount)
            }
            DefaultToolButton {
                objectName: "consoleFold"
                Layout.alignment: Qt.AlignTop
                icon.source: "../icons/chevron-right.svg"
                label: qsTr("Fold the console (F11)")
                onClicked: widget.foldWanted()
            }
        }

        RowLayout {
            spacing: Theme.gap

            DefaultTextField {
                id: commandField

                objectName: "consoleCommand"
                Layout.preferredWidth: Theme.fieldWidth / 2
                focus: true
                font: Theme.codeFont
                placeholderText: qsTr("Command")
                label: qsTr("Command code in hexadecimal")
                hint: qsTr("Command code in hexadecimal, like 0x07; Up and Down recall")
                Keys.onUpPressed: widget.recall(widget.recalled + 1)
                Keys.onDownPressed: widget.recall(widget.recalled - 1)
                onAccepted: widget.send()
            }
            DefaultTextField {
                id: payloadField

                objectName: "consolePayload"
                Layout.fillWidth: true
                font: Theme.codeFont
                placeholderText: qsTr("Payload bytes")
                label: qsTr("Payload bytes in hexadecimal, separated by blanks")
                hint: qsTr("Payload bytes in hexadecimal, separated by blanks, like 01 ff; "
                           + "Up and Down recall")
                Keys.onUpPressed: widget.recall(widget.recalled + 1)
                Keys.onDownPressed: widget.recall(widget.recalled - 1)
                onAccepted: widget.send()
            }
            DefaultButton {
                objectName: "consoleSend"
                text: qsTr("Send")
                hint: qsTr("Send the command to the lidar (Enter)")
                onClicked: widget.send()
            }
        }

        ReplyText {
            objectName: "replyHeader"
            Layout.fillWidth: true
            Layout.preferredHeight: Theme.smallControlHeight + Theme.gapTiny
            caption: qsTr("Reply header")
            text: widget.replyHeader
        }
        ReplyText {
            objectName: "replyPayload"
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.minimumHeight: 2 * Theme.controlHeight
            caption: qsTr("Reply payload")
            text: widget.replyPayload
        }

        PlainText {
            text: qsTr("History")
            font: Theme.boldFont
        }

        ListView {
            id: historyView

            objectName: "consoleHistory"
            Layout.fillWidth: true
            Layout.preferredHeight: 5 * Theme.smallControlHeight
            clip: true
            activeFocusOnTab: count > 0
            model: widget.history
            boundsBehavior: Flickable.StopAtBounds
            T.ScrollBar.vertical: DefaultScrollBar {}

            Accessible.role: Accessible.Table
            Accessible.name: qsTr("Command history")

            delegate: HistoryRow {
                required property int index
                required property var modelData

                width: ListView.view.width
                objectName: "history_" + index
                time: modelData.record_time
                text: widget.textOf(modelData)
                current: index === widget.recalled
                onRecalled: widget.recall(index)
                onSentAgain: widget.sendRequested(modelData.send_cmd_history,
                                                    modelData.send_payload_history)
                onCopied: widget.copyRequested(text)
            }
        }
    }
}
