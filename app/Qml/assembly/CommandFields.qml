import QtQuick 2.15
import QtQuick.Layouts 1.15
import Tevron 1.0
import "../controls"
import "../theme"

// The command and the payload of the console, and below them what is known of the command.
//
// nameOf(command, payload)          a function that says what a command does, or nothing
// sendWanted(), keepWanted()        Enter or the button; the user wants the command as a favourite
// recallWanted(step)                Up and Down: 1 is the next older command
ColumnLayout {
    id: fields

    property alias command: commandField.text
    property alias payload: payloadField.text
    property var nameOf: (command, payload) => ""
    readonly property string problem: command === "" ? ""
        : ConsoleWords.CommandProblem(command) || ConsoleWords.PayloadProblem(payload)
    readonly property string name: nameOf(command, payload)

    signal sendWanted()
    signal keepWanted()
    signal recallWanted(int step)

    spacing: Theme.gapTiny

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
            Keys.onUpPressed: fields.recallWanted(1)
            Keys.onDownPressed: fields.recallWanted(-1)
            onAccepted: fields.sendWanted()
        }
        DefaultTextField {
            id: payloadField

            objectName: "consolePayload"
            Layout.fillWidth: true
            font: Theme.codeFont
            placeholderText: qsTr("Payload bytes")
            label: qsTr("Payload bytes in hexadecimal, separated by blanks")
            Keys.onUpPressed: fields.recallWanted(1)
            Keys.onDownPressed: fields.recallWanted(-1)
            onAccepted: fields.sendWanted()
        }
        DefaultButton {
            objectName: "consoleSend"
            text: qsTr("Send")
            onClicked: fields.sendWanted()
        }
    }

    RowLayout {
        spacing: Theme.gap

        PlainText {
            objectName: "consoleNote"
            Layout.fillWidth: true
            Layout.preferredHeight: Theme.controlHeight
            text: fields.problem !== "" ? fields.problem
                : fields.name !== "" ? ConsoleWords.CodeText(fields.command) + " " + fields.name
                : fields.command !== "" ? qsTr("Nothing is known of this command.")
                : qsTr("Hexadecimal, like 0x07 and 01 ff. Up and Down recall.")
            font: Theme.captionFont
            color: fields.problem !== "" ? Theme.errorColor : Theme.quietTextColor
            wrapMode: Text.Wrap
            elide: Text.ElideRight
            maximumLineCount: 2
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        DefaultToolButton {
            objectName: "consoleKeep"
            Layout.alignment: Qt.AlignTop
            Layout.preferredHeight: Theme.smallControlHeight
            enabled: fields.command !== "" && fields.problem === ""
            font: Theme.captionFont
            text: qsTr("Keep…")
            label: qsTr("Keep the command as a favourite")
            onClicked: fields.keepWanted()
        }
    }
}
