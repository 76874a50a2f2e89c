import QtQuick 2.15
import "../controls"
import "../theme"

// The rows of a page, in groups and, where they fit, in two columns. Rows are made when they come
// near the view, and stay: what is typed in them is never in the way of a refresh.
//
// rows      a PageRows; the others are handed to each row, see PageRow
// linked    the rows were found: their captions lead to their pages
// openPage  only rows of this page can be changed; -1: all
// current   the row that had the keyboard last
// edited()         the user changed a value
// entered(level1)  a row of that page got the keyboard
// pageWanted(row)  the user wants to see the row on its page
ScrollArea {
    id: grid

    property var rows
    property var manager
    property var fovEdits
    property var upgrade
    property var monitor: null
    property var written: ({})
    property bool linked: false
    property int openPage: -1
    property var current: null
    readonly property int count: repeater.count
    readonly property bool isWide: width >= 2 * Theme.pageColumnWidth + 3 * Theme.gapWide
    readonly property real columnWidth: layout.right < count ? (width - 4 * Theme.gapWide) / 2
                                                             : width - 2 * Theme.gapWide
    // What is within a view of what is seen.
    readonly property real step: Math.max(height, Theme.rowHeight)
    readonly property real nearStart: (Math.floor(contentY / step) - 1) * step
    readonly property real nearEnd: nearStart + 4 * step

    signal edited()
    signal entered(int level1)
    signal pageWanted(var row)

    // The row at this place, made if it is not there yet.
    function rowAt(index) {
        const slot = repeater.itemAt(index);
        slot.made = true;
        slot.asynchronous = false;
        return slot.item;
    }

    // Scrolls as a key asks for it; false when there is nothing to scroll or it is no such key.
    function scrollByKey(key) {
        const lowest = Math.max(0, contentHeight - height);
        const wanted = key === Qt.Key_Up ? contentY - Theme.rowHeight
                     : key === Qt.Key_Down ? contentY + Theme.rowHeight
                     : key === Qt.Key_PageUp ? contentY - height + Theme.rowHeight
                     : key === Qt.Key_PageDown ? contentY + height - Theme.rowHeight
                     : key === Qt.Key_Home ? 0
                     : key === Qt.Key_End ? lowest : contentY;
        const end = Math.max(0, Math.min(lowest, wanted));
        const moved = end !== contentY;
        contentY = end;
        return moved;
    }

    contentHeight: layout.height > 0 ? layout.height + Theme.gapWide : 0

    PageLayout {
        id: layout

        columns: grid.isWide ? 2 : 1
    }

    function arrange() {
        current = null;
        contentY = 0;
        layout.start(rows.Shape());
        // Rows at places that the page before had, too, are there already.
        for (let i = 0; i < count; ++i) {
            const slot = repeater.itemAt(i);
            if (slot !== null && slot.item !== null)
                layout.tell(i, slot.item.lineHeight);
        }
    }

    Component.onCompleted: arrange()

    Connections {
        target: grid.rows
        function onRebuilt() { grid.arrange(); }
    }

    Repeater {
        id: repeater

        model: grid.rows

        Loader {
            id: slot

            readonly property var roles: model
            // -1 before it has a place. One binding, so that no row is taken for near while another is
            // not yet brought up to date.
            readonly property real begin: index >= 0 && index < layout.tops.length ? layout.tops[index] : -1
            readonly property bool near: begin >= 0 && begin < grid.nearEnd && begin >= grid.nearStart
            property bool made: false

            onNearChanged: if (near) made = true
            Component.onCompleted: made = near

            // What is being typed to be found does not wait for rows.
            asynchronous: grid.linked
            active: made
            x: Theme.gapWide + (index >= layout.right ? grid.columnWidth + 2 * Theme.gapWide : 0)
            y: Math.max(0, begin)
            width: grid.columnWidth
            sourceComponent: PageRow {
                index: slot.roles.index
                caption: slot.roles.caption
                kind: slot.roles.kind
                level1: slot.roles.level1
                level2: slot.roles.level2
                level3: slot.roles.level3
                leaf: slot.roles.leaf || ({})
                heading: slot.roles.heading || ""
                linked: grid.linked
                locked: grid.openPage >= 0 && level1 !== grid.openPage
                headHeight: layout.heads[slot.roles.index] || 0
                manager: grid.manager
                fovEdits: grid.fovEdits
                upgrade: grid.upgrade
                monitor: grid.monitor
                writtenAt: grid.written[place] || ""
                onLineHeightChanged: layout.tell(index, lineHeight)
                Component.onCompleted: layout.tell(index, lineHeight)
                onEntered: {
                    grid.current = this;
                    grid.entered(level1);
                }
                onPageWanted: grid.pageWanted(this)
                onEdited: {
                    grid.rows.TakeRow(index);
                    grid.edited();
                }
                onScrollAsked: grid.scrollByKey(key)
            }
        }
    }
}
