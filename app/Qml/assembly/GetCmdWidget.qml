import QtQuick 2.15
import QtQuick.Layouts 1.15
import Tevron 1.0
import "../controls"
import "../theme"

// The command console: a command and a payload in hexadecimal, the reply with its verdict in words,
// and the commands at hand. Up and Down in either field walk through the history.
//
// manager               the object that sends, and holds the history and the model's variables
// copyRequested(text)   the user wants the text on the clipboard
// logged(text, tag)     a line for the log
// refused(reason)       what the user wanted cannot be done
// foldWanted()          the user wants the console out of the way
FocusScope {
    id: widget

    property var manager
    property var colorOf: tag => Theme.textColor

    signal copyRequested(string text)
    signal logged(string text, string tag)
    signal refused(string reason)
    signal foldWanted()

    function send(command, payload) {
        control.send(command, payload);
    }

    function fill(command, payload) {
        fields.command = command;
        fields.payload = payload;
    }

    // Shows an entry of the history with its reply; -1 empties the fields.
    function recall(entry) {
        if (entry < -1 || entry >= control.history.length)
            return;
        control.chosen = entry;
        fill(entry < 0 ? "" : control.history[entry].send_cmd_history,
             entry < 0 ? "" : control.history[entry].send_payload_history);
    }

    CommandControl {
        id: control

        manager: widget.manager
    }
    CommandNames {
        id: names

        manager: widget.manager
    }
    SaveText {
        id: saver

        onSaved: widget.logged(qsTr("The command history is saved: %1").arg(path), "INFO")
        onRefused: widget.refused(reason)
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.gapWide
        spacing: Theme.gap

        RowLayout {
            spacing: Theme.gap

            SectionTitle {
                Layout.fillWidth: true
                text: qsTr("Command console")
                description: qsTr("Commands with raw bytes in the log: %1").arg(widget.manager.CommandLogCnt)
            }
            DefaultToolButton {
                objectName: "consoleFold"
                Layout.alignment: Qt.AlignTop
                icon.source: "../icons/chevron-right.svg"
                label: qsTr("Fold the console (F11)")
                onClicked: widget.foldWanted()
            }
        }

        CommandFields {
            id: fields

            Layout.fillWidth: true
            nameOf: names.Of
            onSendWanted: widget.send(command, payload)
            onKeepWanted: lists.keep(command, payload, name.split(":")[0])
            onRecallWanted: widget.recall(control.chosen + step)
        }

        PlainText {
            objectName: "consoleVerdict"
            Layout.fillWidth: true
            text: control.chosen < 0 ? control.verdict
                : qsTr("%1 (from the history)").arg(control.verdict)
            color: widget.colorOf(control.tag)
            wrapMode: Text.Wrap
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        ReplyText {
            objectName: "replyHeader"
            Layout.fillWidth: true
            Layout.preferredHeight: Theme.smallControlHeight + Theme.gapTiny
            caption: qsTr("Reply header")
            text: control.header
        }
        ReplyText {
            id: replyBytes

            objectName: "replyPayload"
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.minimumHeight: 2 * Theme.controlHeight
            Layout.preferredHeight: 6 * Theme.controlHeight
            caption: qsTr("Reply payload")
            text: control.payload
            layOut: columns => ConsoleWords.Dump(replyBytes.text, columns >= longLine ? 16 : 8)
            // Characters of a line of 16 bytes: its place, the bytes, what they stand for.
            readonly property int longLine: 71
        }

        CommandLists {
            id: lists

            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.maximumHeight: 12 * Theme.smallControlHeight
            history: control.history
            current: control.chosen
            onRecalled: widget.recall(entry)
            onFilled: widget.fill(command, payload)
            onSent: widget.send(command, payload)
            onCopied: widget.copyRequested(text)
            onSaveWanted: saver.save(qsTr("Save the command history"), "Tevron_commands_%1.txt",
                                     control.historyText())
        }
    }
}
