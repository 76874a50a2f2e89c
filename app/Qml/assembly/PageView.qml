import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import Tevron 1.0
import "../controls"
import "../theme"

// One page of the lidar's variables with its rows and, below them, Save and Cancel.
//
// manager  the object that holds the pages (myMap, level2List) and reads and writes them
// tab      the page that is shown
// upgrade  the window's UpgradeControl
// finding  what is found on all pages is shown in its place
//
// Save asks before it writes values out of their range: confirmationWanted(names) is answered by
// calling write() or nothing.
FocusScope {
    id: page

    property var manager
    property int tab: 0
    property var upgrade
    property string title: ""
    property bool finding: false
    property alias searchText: finder.text
    readonly property var body: finding ? finder : grid
    readonly property int kindFile: 4
    readonly property int kindMonitor: 7
    readonly property alias hasEdits: edits.any
    readonly property alias saving: edits.saving
    property bool holdsUpgrade: false
    property bool holdsMonitor: false

    signal refused(string reason)
    signal confirmationWanted(var names)
    // Among what was found: another page is to be the one in view; a row is to be seen on its page.
    signal pageWanted(int tab)
    signal rowWanted(var row)

    // Brings up to date what shows something else. What was typed stays, whoever read the page.
    function takeValues() {
        edits.takeRows();
        finder.take();
        monitor.takeHardware();
    }

    // Scrolls as a key asks for it; false when that changes nothing.
    function scrollByKey(key) {
        return body.scrollByKey(key);
    }

    // Does `reading`, after which no edit is left.
    function release(reading) {
        edits.release(reading);
        grid.written = {};
        takeValues();
    }

    function cancel() {
        page.forceActiveFocus();
        release(() => manager.GetLidarModuleInfo(tab));
    }

    function discard() {
        page.forceActiveFocus();
        release(() => manager.ClearSetMap());
    }

    function save() {
        edits.save();
    }

    function write() {
        edits.write();
    }

    // Takes the keyboard to a row of the page.
    function goTo(level1, level2, level3) {
        const index = rows.RowAt(level1, level2, level3);
        if (index >= 0)
            grid.rowAt(index).forceActiveFocus(Qt.ShortcutFocusReason);
    }

    // Takes the keyboard to the first row that was found.
    function goToFound() {
        finder.goToFirst();
    }

    // Goes to the first field that has to be corrected, unless a message has the keyboard.
    function goToFault() {
        const first = rows.FirstFault();
        const row = first >= 0 ? first : rows.FirstFov();
        if (!activeFocus || row < 0)
            return;
        if (finding)
            rowWanted(grid.rowAt(row));
        grid.rowAt(row).goToFault();
    }

    function showOutcome(outcome) {
        takeValues();
        grid.written = outcome.written;
        saveBar.tell(outcome.text, outcome.good);
    }

    Keys.onPressed: event.accepted = event.modifiers === Qt.NoModifier && scrollByKey(event.key)

    Connections {
        target: page.manager
        function onMyMapChanged() { page.takeValues(); }
        function onMyTimerMapChanged() {
            rows.TakeTimed();
            finder.takeTimed();
            monitor.takeHardware();
            edits.countPending();
        }
        function onMonitorContentChanged() { rows.Rebuild(); }
        function onLidarModelChanged() {
            edits.angles.clear();
            rows.Rebuild();
        }
    }

    PageRows {
        id: rows

        manager: page.manager
        page: page.tab
        onRebuilt: {
            page.holdsUpgrade = HasKind(page.kindFile);
            page.holdsMonitor = HasKind(page.kindMonitor);
            monitor.takeHardware();
            edits.countPending();
        }
    }

    PageEdits {
        id: edits

        manager: page.manager
        tab: page.tab
        rows: rows
        current: page.body.current
        listened: page.activeFocus
        onRefused: page.refused(reason)
        onConfirmationWanted: page.confirmationWanted(names)
        onFaultFound: page.goToFault()
        onDone: page.showOutcome(outcome)
    }

    SectionTitle {
        id: heading

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: Theme.gapWide
        visible: !page.holdsMonitor && !page.finding
        text: page.title
        description: rows.description
    }

    // In the place of the heading and of nearly all rows.
    PageMonitor {
        id: monitor

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: grid.top
        anchors.leftMargin: Theme.gapWide
        anchors.rightMargin: Theme.gapWide
        anchors.topMargin: Theme.gap
        anchors.bottomMargin: Theme.gap
        visible: page.holdsMonitor && !page.finding
        manager: page.manager
        rows: rows
        onFailed: page.refused(reason)
    }

    PageGrid {
        id: grid

        objectName: "pageRows"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: saveBar.visible ? saveBar.top : parent.bottom
        height: page.holdsMonitor ? Math.min(contentHeight, page.height / 3)
                                  : (saveBar.visible ? saveBar.y : page.height) - heading.y
                                    - heading.height - Theme.gap
        visible: !page.finding
        focus: !page.finding
        rows: rows
        manager: page.manager
        fovEdits: edits.angles
        upgrade: page.upgrade
        monitor: page.holdsMonitor ? monitor.source : null
        onEdited: edits.countPending()
    }

    EmptyNote {
        anchors.centerIn: grid
        visible: rows.count === 0 && !page.finding
        text: qsTr("This model has no values to show. Choose another model, or check its table.")
    }

    FindView {
        id: finder

        objectName: "findView"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: grid.bottom
        visible: page.finding
        focus: page.finding
        manager: page.manager
        tab: page.tab
        holdsTab: page.hasEdits
        written: grid.written
        onEdited: {
            rows.TakeAll();
            edits.countPending();
        }
        onPageWanted: page.pageWanted(tab)
        onRowWanted: page.rowWanted(row)
    }

    SaveBar {
        id: saveBar

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        visible: !page.holdsUpgrade && rows.count > 0 && (!page.holdsMonitor || page.hasEdits)
        editCount: edits.editCount
        faultCount: edits.faultCount
        onSaveClicked: page.save()
        onCancelClicked: page.cancel()
    }

    Shortcut {
        sequence: StandardKey.Save
        enabled: page.visible && saveBar.visible
        onActivated: page.save()
    }
    Shortcut {
        sequences: ["Ctrl+R"]
        enabled: page.visible
        onActivated: page.cancel()
    }
}
