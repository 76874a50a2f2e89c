import QtQuick 2.15
import "../controls"
import "../theme"

// Names and values in two columns, for reading only.
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

            Text {
                width: parent.width / 2
                text: modelData.name
                font: Theme.bodyFont
                color: Theme.quietTextColor
                elide: Text.ElideRight
            }
            Text {
                width: parent.width / 2 - parent.spacing
                text: modelData.state === "read" ? modelData.value : "—"
                font: Theme.bodyFont
                color: Theme.textColor
                elide: Text.ElideRight
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
