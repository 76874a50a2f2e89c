import QtQuick 2.15
import "../theme"

// The editor of a value that is one of a list.
FocusScope {
    id: editor

    property var row
    readonly property var leaf: row.leaf

    focus: true
    implicitHeight: Theme.controlHeight

    DefaultComboBox {
        id: box

        objectName: "choice_" + editor.row.place
        width: parent.width
        focus: true
        model: editor.leaf.options
        chosenIndex: editor.row.unread ? -1 : editor.leaf.option_index
        stale: editor.row.stale
        displayText: editor.row.unread ? Theme.unreadText
                   : currentIndex < 0 ? editor.leaf.current_val : currentText
        pending: editor.row.pending
        label: editor.row.caption
        onChosen: {
            editor.row.edit(3, String(index));
            revert();
        }
    }
}
