import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import Tevron 1.0
import "../controls"
import "../theme"

// The lines of the log. They stay at the end until the user scrolls up or selects; a drag of the
// mouse or Shift with the arrows selects several.
//
// colorOf         a function that gives the colour of a tag
// copyWanted()    the user wants the selected lines, or all that are shown, on the clipboard
ListView {
    id: view

    property alias filter: selection.filter
    readonly property alias selection: selection
    property var colorOf: tag => Theme.textColor
    // Follows the newest line until the user scrolls up, and again once at the end.
    property bool following: true

    signal copyWanted()

    function showRow(row) {
        following = false;
        selection.Select(row, false);
        positionViewAtIndex(row, ListView.Center);
    }

    function move(row, extend) {
        following = row >= count - 1;
        selection.Select(row, extend);
        positionViewAtIndex(selection.current, ListView.Contain);
    }

    function scrollBy(pixels) {
        contentY = Math.max(originY, Math.min(originY + contentHeight - height, contentY + pixels));
        following = atYEnd;
    }

    topMargin: Theme.gapTiny
    bottomMargin: Theme.gapTiny
    clip: true
    focus: true
    activeFocusOnTab: true
    model: filter
    boundsBehavior: Flickable.StopAtBounds
    T.ScrollBar.vertical: DefaultScrollBar { onPressedChanged: view.following = view.atYEnd }

    onCountChanged: if (following) Qt.callLater(positionViewAtEnd)
    onHeightChanged: if (following) Qt.callLater(positionViewAtEnd)
    onMovementStarted: following = false
    onMovementEnded: following = atYEnd

    Accessible.role: Accessible.List
    Accessible.name: qsTr("Log lines")

    Keys.onPressed: {
        const extend = (event.modifiers & Qt.ShiftModifier) !== 0;
        const row = selection.current < 0 ? count : selection.current;
        if (event.matches(StandardKey.Copy))
            copyWanted();
        else if (event.matches(StandardKey.SelectAll))
            selection.SelectAll();
        else if (event.key === Qt.Key_Up || event.key === Qt.Key_Down)
            move(row + (event.key === Qt.Key_Up ? -1 : 1), extend);
        else if (event.key === Qt.Key_Home || event.key === Qt.Key_End)
            move(event.key === Qt.Key_Home ? 0 : count - 1, extend);
        else if (event.key === Qt.Key_PageUp || event.key === Qt.Key_PageDown)
            scrollBy(event.key === Qt.Key_PageUp ? -height : height);
        else if (event.key === Qt.Key_Escape && selection.first >= 0)
            selection.Clear();
        else
            return;
        event.accepted = true;
    }

    LogSelection { id: selection }

    delegate: Rectangle {
        readonly property bool selected: index >= selection.first && index <= selection.last

        width: ListView.view.width
        height: line.height
        color: selected ? Theme.selectionColor : "transparent"

        PlainText {
            id: line

            x: Theme.gapWide
            width: parent.width - 2 * Theme.gapWide
            text: model.shown
            font: Theme.codeFont
            color: view.colorOf(model.tag)
            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
            Accessible.role: Accessible.ListItem
            Accessible.name: text
            Accessible.selected: parent.selected
        }
    }

    MouseArea {
        id: mouse

        property real place: 0

        function select(extend) {
            const row = view.indexAt(Theme.gap, view.contentY + Math.max(0, Math.min(place, view.height - 1)));
            if (row >= 0)
                selection.Select(row, extend);
        }

        // The view, not its content, which moves.
        parent: view
        anchors.fill: parent
        anchors.rightMargin: Theme.scrollBarWidth
        preventStealing: true
        cursorShape: Qt.IBeamCursor
        onPressed: {
            view.forceActiveFocus(Qt.MouseFocusReason);
            view.following = false;
            place = mouse.y;
            select((mouse.modifiers & Qt.ShiftModifier) !== 0);
        }
        onPositionChanged: {
            place = mouse.y;
            select(true);
        }
        onReleased: view.following = view.atYEnd && selection.first === selection.last
    }

    // A drag that leaves the lines pulls them along.
    Timer {
        interval: Theme.dragScrollMs
        repeat: true
        running: mouse.pressed && (mouse.place < 0 || mouse.place > view.height)
        onTriggered: {
            view.scrollBy(mouse.place < 0 ? -Theme.gapWide : Theme.gapWide);
            view.following = false;
            mouse.select(true);
        }
    }

    FocusRing {
        parent: view
        anchors.margins: 0
        shown: view.activeFocus
    }
}
