import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import QtQuick.Window 2.15
import Tevron 1.0

// One page of the lidar's variables, or what is found on all pages, and below it Save and Cancel.
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
    // What is in view.
    readonly property var shown: finding ? finder : body
    readonly property alias hasEdits: edits.any
    readonly property alias saving: edits.saving

    signal refused(string reason)
    signal confirmationWanted(var names)
    // Among what was found: another page is to be the one in view; a row is to be seen on its page.
    signal pageWanted(int tab)
    signal rowWanted(var row)

    // Brings up to date what shows something else. What was typed stays, whoever read the page.
    function takeValues() {
        edits.takeRows();
        finder.take();
    }

    // Scrolls as a key asks for it; false when that changes nothing.
    function scrollByKey(key) {
        return shown.scrollByKey(key);
    }

    // Does `reading`, after which no edit is left.
    function release(reading) {
        edits.release(reading);
        saveBar.tell("", true);
        body.written = {};
        takeValues();
    }

    function cancel() {
        page.forceActiveFocus();
        release(() => LongCalls.Run(() => manager.GetLidarModuleInfo(tab)));
    }

    function discard() {
        page.forceActiveFocus();
        release(() => manager.ClearSetMap());
    }

    function save(next) {
        edits.save(next);
    }

    function write(next) {
        edits.write(next);
    }

    // Takes the keyboard to a row of the page.
    function goTo(level1, level2, level3) {
        body.goTo(level1, level2, level3);
    }

    // Takes the keyboard to the first row that was found.
    function goToFound() {
        finder.goToFirst();
    }

    function hasMessageKeyboard() {
        let item = Window.activeFocusItem;
        while (item !== null && item !== T.Overlay.overlay)
            item = item.parent;
        return item !== null;
    }

    // Goes to the first field that has to be corrected, unless a message has the keyboard.
    function goToFault() {
        const row = hasMessageKeyboard() ? null : body.faultyRow();
        if (row === null)
            return;
        if (finding)
            rowWanted(row);
        row.goToFault();
    }

    function showOutcome(outcome) {
        takeValues();
        body.written = outcome.written;
        saveBar.tell(outcome.text, outcome.good);
    }

    Keys.onPressed: event.accepted = event.modifiers === Qt.NoModifier && scrollByKey(event.key)

    Connections {
        target: page.manager
        function onMyMapChanged() { page.takeValues(); }
        function onMyTimerMapChanged() {
            body.rows.TakeTimed();
            finder.takeTimed();
            edits.countPending();
        }
        function onMonitorContentChanged() { body.rows.Rebuild(); }
        function onLidarModelChanged() {
            edits.angles.clear();
            body.rows.Rebuild();
        }
    }

    PageEdits {
        id: edits

        manager: page.manager
        tab: page.tab
        rows: body.rows
        current: page.shown.current
        listened: page.activeFocus
        onRefused: page.refused(reason)
        onConfirmationWanted: page.confirmationWanted(names)
        onFaultFound: page.goToFault()
        onDone: page.showOutcome(outcome)
    }

    PageBody {
        id: body

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: saveBar.visible ? saveBar.top : parent.bottom
        visible: !page.finding
        focus: !page.finding
        manager: page.manager
        tab: page.tab
        title: page.title
        upgrade: page.upgrade
        fovEdits: edits.angles
        onRebuilt: edits.countPending()
        onEdited: edits.countPending()
        onFailed: page.refused(reason)
    }

    FindView {
        id: finder

        objectName: "findView"
        anchors.fill: body
        visible: page.finding
        focus: page.finding
        manager: page.manager
        tab: page.tab
        holdsTab: page.hasEdits
        written: body.written
        onEdited: {
            body.rows.TakeAll();
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
        visible: !body.holdsUpgrade && body.rows.count > 0
                 && (!body.holdsMonitor || page.hasEdits)
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
