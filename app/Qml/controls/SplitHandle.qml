import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../theme"

// The bar between two areas of the window, with which they share the room. It is dragged, or moved with
// the arrow keys, Home and End.
//
// pane         the area to the right of it or below it, of which it is the border
// label        the name that assistive technology reads
// sized(size)  the pane's width or height after a key
Rectangle {
    id: handle

    property Item pane
    property string label: ""
    readonly property bool isUpright: height > width

    signal sized(int size)

    // Moves it to the right or down, as far as it can go.
    function move(by) {
        const limits = pane.T.SplitView;
        const side = isUpright ? "Width" : "Height";
        const wanted = (isUpright ? pane.width : pane.height) - by;
        const size = Math.max(limits["minimum" + side], Math.min(wanted, limits["maximum" + side]));
        limits["preferred" + side] = size;
        sized(size);
    }

    implicitWidth: Theme.gapTiny
    implicitHeight: Theme.gapTiny
    activeFocusOnTab: true
    color: activeFocus || T.SplitHandle.pressed ? Theme.accentColor
         : T.SplitHandle.hovered ? Theme.outlineHoverColor : Theme.trenchColor

    Accessible.role: Accessible.Splitter
    Accessible.name: label

    Keys.onPressed: {
        const by = event.key === (isUpright ? Qt.Key_Left : Qt.Key_Up) ? -Theme.gapWide
                 : event.key === (isUpright ? Qt.Key_Right : Qt.Key_Down) ? Theme.gapWide
                 : event.key === Qt.Key_Home ? -Infinity
                 : event.key === Qt.Key_End ? Infinity : 0;
        event.accepted = by !== 0;
        if (event.accepted)
            move(by);
    }

    FocusRing {
        anchors.margins: 0
        shown: handle.activeFocus
    }
}
