import QtQuick 2.15

// How a search over all pages begins and ends, and how what was found is gone to.
//
// area     the PageArea: currentTab, hasEdits, selectTab(), leaveAsked()
// field    the FindField
// page     the PageView
// finding  what was found is shown in the place of the page
// ended()  the page is in view again, and the keyboard is to be somewhere
Item {
    id: control

    property var area
    property var field
    property var page
    property bool finding: false
    property var wanted: null

    signal ended()

    // Ends the search without going anywhere.
    function close() {
        if (finding)
            page.shown.clearFilters();
        finding = false;
        field.text = "";
    }

    // Back to the page, and to the row of it that was in hand.
    function leave() {
        wanted = page.shown.current;
        close();
        ended();
        arrive();
    }

    // Shows the page of a row that was found, and goes to it there.
    function goTo(row) {
        wanted = { "level1": row.level1, "level2": row.level2, "level3": row.level3 };
        if (row.level1 !== area.currentTab && area.hasEdits) {
            area.leaveAsked(row.level1);
        } else if (row.level1 !== area.currentTab) {
            area.selectTab(row.level1);
        } else {
            finding = false;
            arrive();
        }
    }

    // The page in view is another one: goes to the row on it that was asked for.
    function arrive() {
        const row = wanted;
        wanted = null;
        if (row !== null && row.level1 === area.currentTab)
            page.goTo(row.level1, row.level2, row.level3);
    }

    Connections {
        target: control.field
        function onStarted() { control.finding = true; }
        function onFirstWanted() { control.page.goToFound(); }
        function onEnded() { control.leave(); }
    }

    Shortcut {
        sequence: StandardKey.Find
        enabled: control.field.visible
        onActivated: control.field.start()
    }
}
