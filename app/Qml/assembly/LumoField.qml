import QtQuick 2.15
import "../controls"
import "../theme"

// A caption, the control that belongs to it, and a note beside them: what is wrong with what was
// typed, else what the lidar holds in its place, with the way back.
//
// name     what tests find the control by
// label    the name of the control for assistive technology
// edited   what stands there was not set
// was      what the lidar holds, in words; empty when that is not known
// stale    nothing says that the lidar still holds it
// problem  why it cannot be set; empty when it can
// undone() the user takes the edit back
Item {
    id: line

    property string caption: ""
    property string name: ""
    property string label: ""
    property bool edited: false
    property string was: ""
    property bool stale: false
    property string problem: ""
    default property alias controls: controls.data

    signal undone()

    width: parent ? parent.width : implicitWidth
    implicitHeight: Theme.controlHeight

    Keys.onEscapePressed: {
        event.accepted = edited;
        if (edited)
            undone();
    }

    PlainText {
        id: captionText

        height: Theme.controlHeight
        width: Theme.serialCaptionWidth
        verticalAlignment: Text.AlignVCenter
        text: line.caption
        color: !line.enabled ? Theme.disabledTextColor
             : line.edited ? Theme.pendingColor : Theme.textColor
        elide: Text.ElideRight
    }
    Row {
        id: controls

        anchors.left: captionText.right
        anchors.leftMargin: Theme.gap
        spacing: Theme.gap
    }
    PlainText {
        id: note

        objectName: line.name + "Note"
        anchors.left: controls.right
        anchors.leftMargin: Theme.gap
        height: Theme.controlHeight
        width: Math.max(0, Math.min(implicitWidth, line.width - x - undo.width))
        verticalAlignment: Text.AlignVCenter
        text: line.problem.length > 0 ? line.problem
            : !line.edited ? ""
            : line.was.length > 0 ? qsTr("was %1").arg(line.was) : qsTr("not set")
        font: Theme.captionFont
        color: line.problem.length > 0 ? Theme.errorColor : Theme.pendingColor
        elide: Text.ElideRight
        Accessible.ignored: true

        HoverHandler { id: hover }
        DefaultToolTip {
            wanted: hover.hovered && note.truncated
            text: note.text
        }
    }
    DefaultToolButton {
        id: undo

        objectName: line.name + "Undo"
        anchors.left: note.right
        visible: line.edited
        width: visible ? implicitWidth : 0
        icon.source: "../icons/undo.svg"
        label: qsTr("Take the edit of %1 back").arg(line.caption)
        hint: line.was.length > 0 ? qsTr("Back to %1").arg(line.was) : qsTr("Take it back")
        onClicked: line.undone()
    }
}
