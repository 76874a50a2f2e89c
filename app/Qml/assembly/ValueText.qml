import QtQuick 2.15
import "../controls"
import "../theme"

// A value that cannot be changed: plain text that can be selected and copied.
FocusScope {
    id: editor

    property var row

    focus: true
    implicitHeight: Theme.controlHeight

    TextInput {
        id: value

        objectName: "field_" + editor.row.place
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: Theme.fieldPadding
        anchors.verticalCenter: parent.verticalCenter
        focus: true
        activeFocusOnTab: true
        readOnly: true
        selectByMouse: true
        clip: true
        text: editor.row.valueText
        font: Theme.bodyFont
        color: editor.row.stale ? Theme.disabledTextColor
             : editor.row.unread ? Theme.quietTextColor : Theme.textColor
        selectionColor: Theme.selectionColor
        selectedTextColor: Theme.textColor

        Accessible.role: Accessible.StaticText
        Accessible.name: editor.row.caption
        Accessible.description: text

        onActiveFocusChanged: {
            if (!activeFocus)
                deselect();
        }
        // Home and End are for the page; the text is copied as a whole unless a part is selected.
        Keys.onPressed: {
            if (event.key === Qt.Key_Home || event.key === Qt.Key_End) {
                editor.row.scrollAsked(event.key);
                event.accepted = true;
            } else if (event.matches(StandardKey.Copy) && selectedText.length === 0) {
                selectAll();
                copy();
                event.accepted = true;
            }
        }
    }

    // Beside the text, which cuts off what does not fit.
    FocusRing {
        anchors.fill: value
        anchors.margins: -Theme.gapTiny
        shown: value.activeFocus
    }
}
