import QtQuick 2.15
import "../controls"
import "../theme"

// The note at the end of a row: what is wrong with its value, else that it is not saved yet, else
// what the value has to look like.
PlainText {
    property string problem: ""
    property string hint: ""
    property bool pending: false

    text: problem.length > 0 ? problem
        : pending ? qsTr("Edited, not saved") + (hint.length > 0 ? " · " + hint : "")
        : hint
    font: Theme.captionFont
    color: problem.length > 0 ? Theme.errorColor
         : pending ? Theme.pendingColor : Theme.quietTextColor
    elide: Text.ElideRight
    Accessible.ignored: true
}
