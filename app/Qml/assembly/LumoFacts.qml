import QtQuick 2.15
import "../controls"
import "../theme"

// Names and values in two columns, for reading and copying.
Column {
    id: facts

    // Maps with "name", "value" and "state".
    property var entries: []

    spacing: Theme.gapTiny

    Repeater {
        model: facts.entries

        Row {
            width: facts.width
            spacing: Theme.gap

            PlainText {
                width: parent.width / 2
                text: modelData.name
                color: Theme.quietTextColor
                elide: Text.ElideRight
            }
            // For copying: a serial number is what people ask for by mail.
            TextEdit {
                width: parent.width / 2 - parent.spacing
                text: modelData.state === "read" ? modelData.value : Theme.unreadText
                textFormat: TextEdit.PlainText
                font: Theme.bodyFont
                color: Theme.textColor
                selectionColor: Theme.selectionColor
                selectedTextColor: Theme.textColor
                readOnly: true
                selectByMouse: true
                clip: true
                Accessible.role: Accessible.StaticText
                Accessible.name: modelData.name + ": " + text
            }
        }
    }

    EmptyNote {
        visible: facts.entries.length === 0
        text: qsTr("Not read yet.")
    }
}
