import QtQuick 2.15
import "../controls"
import "../theme"

// The note at the end of a row: what is wrong with its text, else what would be stored in its place,
// else what it was before the edit, else what has to be said about the value, else what it has to look
// like. Where two lines are not enough, the whole of it is in the tooltip.
//
// editor  the row's editor, which may have a `verdict` on its text (see InputRules) and may hold one
//         that is only `typed`
Item {
    id: note

    property var row
    property var editor
    readonly property var verdict: editor && editor.verdict || ({})
    readonly property bool pending: row.pending || row.typed
    readonly property bool isWrong: verdict.text !== undefined && verdict.text !== "" && !verdict.rounded
    readonly property string before: row.pending ? row.leaf.reading || ""
                                   : row.unread ? "" : row.leaf.current_val || ""
    readonly property string form: row.leaf.hint || ""
    readonly property alias text: words.text

    readonly property string news: {
        const leaf = row.leaf;
        switch (row.worth) {
        case "unread":
            return !row.manager.IsConnected ? ""
                 : leaf.read_failure ? qsTr("not read: %1").arg(leaf.read_failure) : qsTr("not read");
        case "written":
            return qsTr("written, not read back");
        case "differs":
            return row.stale ? qsTr("wanted %1, at %3 the lidar held %2").arg(row.label(leaf.wanted))
                               .arg(row.label(leaf.current_val)).arg(leaf.read_at)
                             : qsTr("wanted %1, lidar holds %2").arg(row.label(leaf.wanted))
                               .arg(row.label(leaf.current_val));
        default:
            return row.stale ? (leaf.read_at ? qsTr("read at %1").arg(leaf.read_at) : "")
                 : row.writtenAt.length > 0 ? qsTr("written, read back %1").arg(row.writtenAt) : "";
        }
    }

    PlainText {
        id: words

        objectName: "note_" + note.row.place
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(implicitWidth, note.width - (undo.visible ? undo.width + Theme.gapTiny : 0))
        text: note.verdict.text ? note.verdict.text
            : note.pending && note.before !== "" ? qsTr("was %1").arg(note.row.label(note.before))
            : note.pending ? note.form : note.news || note.form
        font: Theme.captionFont
        color: note.isWrong ? Theme.errorColor
             : note.pending || note.row.worth === "differs" ? Theme.pendingColor
             : note.row.writtenAt.length > 0 && !note.row.stale ? Theme.successColor
             : Theme.quietTextColor
        wrapMode: Text.Wrap
        maximumLineCount: 2
        elide: Text.ElideRight
        Accessible.ignored: true

        HoverHandler { id: hover }
        DefaultToolTip {
            wanted: words.truncated && (hover.hovered || note.row.activeFocus)
            text: words.text
        }
    }

    DefaultToolButton {
        id: undo

        objectName: "undo_" + note.row.place
        anchors.left: words.right
        anchors.leftMargin: Theme.gapTiny
        anchors.verticalCenter: parent.verticalCenter
        visible: note.pending && note.before !== ""
        // While a text is typed, Tab leads on to the next value; Escape takes it back.
        activeFocusOnTab: note.row.pending
        implicitHeight: Theme.smallControlHeight
        icon.source: "../icons/undo.svg"
        iconSize: Theme.smallIconSize
        label: qsTr("Take the edit of %1 back").arg(note.row.caption)
        hint: qsTr("Back to %1").arg(note.row.label(note.before))
        onClicked: note.row.undo()
        // With the edit it goes, also after a Save, and leaves the keyboard to the value.
        onVisibleChanged: {
            if (!visible && note.row.activeFocus && note.editor && !note.editor.activeFocus)
                note.editor.forceActiveFocus(Qt.TabFocusReason);
        }
    }
}
