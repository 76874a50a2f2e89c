import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import QtQuick.Window 2.15
import "../theme"

// Content that is higher than its place. The control that gets the keyboard is brought into view.
Flickable {
    id: area

    readonly property Item focused: Window.activeFocusItem

    onFocusedChanged: {
        let ancestor = focused;
        while (ancestor && ancestor !== contentItem)
            ancestor = ancestor.parent;
        if (!ancestor)
            return;
        const top = focused.mapToItem(contentItem, 0, 0).y;
        const lowest = top + focused.height + Theme.gapWide - height;
        contentY = Math.max(lowest, Math.min(contentY, Math.max(0, top - Theme.gapWide)));
    }

    clip: true
    contentWidth: width
    boundsBehavior: Flickable.StopAtBounds
    T.ScrollBar.vertical: DefaultScrollBar {}
}
