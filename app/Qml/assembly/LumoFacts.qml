import QtQuick 2.15
import "../controls"
import "../theme"

// Names and values in two columns, for reading and copying.
Column {
    id: facts

    // Maps with "name", "value" and "state", see InfoList.
    property var entries: []
    // Nothing says that they still hold.
    property bool stale: false

    spacing: Theme.gapTiny

    Repeater {
        model: facts.entries

        Row {
            readonly property bool unread: modelData.state === "unread"

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
                id: value

                width: parent.width / 2 - parent.spacing
                text: parent.unread ? Theme.unreadText : modelData.value
                textFormat: TextEdit.PlainText
                font: Theme.bodyFont
                color: facts.stale || modelData.state === "stale" ? Theme.disabledTextColor
                                                                  : Theme.textColor
                selectionColor: Theme.selectionColor
                selectedTextColor: Theme.textColor
                readOnly: true
                selectByMouse: true
                activeFocusOnTab: true
                clip: true
                Accessible.role: Accessible.StaticText
                Accessible.name: modelData.name + ": " + text
                onActiveFocusChanged: activeFocus ? selectAll() : deselect()
            }
        }
    }

    EmptyNote {
        visible: facts.entries.length === 0
        text: qsTr("Not read yet.")
    }
}
