import QtQuick 2.15
import "../controls"
import "../theme"

// The caption of a row. Among what was found it leads to the row's page; it takes the keyboard where
// the row has no editor that would.
PlainText {
    id: caption

    property var row
    property bool takesKeyboard: false

    objectName: "caption_" + row.place
    text: row.caption
    color: row.linked && linkHover.hovered ? Theme.accentColor
         : row.pending || row.typed ? Theme.pendingColor : Theme.textColor
    elide: Text.ElideRight
    activeFocusOnTab: row.linked && takesKeyboard
    Accessible.role: row.linked ? Accessible.Link : Accessible.StaticText
    Accessible.name: text
    Accessible.onPressAction: row.pageWanted()

    Keys.onReturnPressed: row.pageWanted()
    Keys.onEnterPressed: row.pageWanted()

    FocusRing { shown: caption.activeFocus }

    HoverHandler { id: hover }
    HoverHandler {
        id: linkHover

        enabled: caption.row.linked
        cursorShape: Qt.PointingHandCursor
    }
    TapHandler {
        enabled: caption.row.linked
        onTapped: caption.row.pageWanted()
    }

    DefaultToolTip {
        wanted: hover.hovered && caption.truncated
        text: caption.text
    }
}
