import QtQuick 2.15
import "../controls"
import "../theme"

// The note at the end of a row: what is wrong with its text, else that it is not saved yet, else what
// has to be said about the value, else what it has to look like, in the room there is. The tooltips
// tell all of it.
PlainText {
    property var row
    property string problem: ""
    property string rounding: ""
    property bool pending: row.pending

    objectName: "note_" + row.place
    text: problem.length > 0 ? problem
        : rounding.length > 0 ? rounding
        : pending ? qsTr("Edited, not saved") + (row.range.length > 0 ? " · " + row.range : "")
        : row.news || row.range || row.hint
    font: Theme.captionFont
    color: problem.length > 0 ? Theme.errorColor
         : pending || row.worth === "differs" ? Theme.pendingColor : Theme.quietTextColor
    elide: Text.ElideRight
    Accessible.ignored: true
}
