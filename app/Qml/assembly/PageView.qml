import QtQuick 2.15
import QtQuick.Window 2.15
import QtQuick.Templates 2.15 as T
import "../controls"
import "../theme"

// One page of the lidar's variables with its rows and, below them, Save and Cancel.
//
// manager  the object that holds the pages (myMap, level2List) and reads and writes them
// tab      the page that is shown
//
// Save asks before it writes values out of their range: confirmationWanted(names) is answered by
// calling write() or nothing.
FocusScope {
    id: page

    property var manager
    property int tab: 0
    property string title: ""
    readonly property bool hasEdits: pendingCommands > 0 || typing
    // A field of the page holds text that was not confirmed yet.
    readonly property bool typing: {
        const item = Window.activeFocusItem;
        return activeFocus && item !== null && item.typing === true && item.text !== item.value;
    }
    property int pendingCommands: 0

    signal refused(string reason)
    signal confirmationWanted(var names)

    // The rows of the page: [caption, kind, level1, level2, level3].
    property var rows: []
    property var values: []
    readonly property bool holdsUpgrade: rows.some(row => row[1] === 4)
    readonly property string description: {
        const first = rows.length > 0 ? valueAt(rows[0][2], rows[0][3], rows[0][4]) : null;
        return first !== null && first.page_description ? first.page_description : "";
    }

    // Builds the rows anew: another page, another model, or another monitor table.
    function rebuild() {
        values = manager.myMap;
        const pages = manager.level2List;
        rows = tab >= 0 && tab < pages.length ? pages[tab] : [];
        list.positionViewAtBeginning();
        countPending();
    }

    function valueAt(level1, level2, level3) {
        const groups = values[level1];
        const group = groups === undefined ? undefined : groups[level2];
        return group === undefined || group[level3] === undefined ? null : group[level3];
    }

    // The rows that are made already, in no particular order.
    function liveRows() {
        const found = [];
        const items = list.contentItem.children;
        for (let i = 0; i < items.length; ++i) {
            if (items[i].take !== undefined)
                found.push(items[i]);
        }
        return found;
    }

    // Brings the values into the rows that are there already; `timerOnly` leaves alone those that
    // only a reading of the page renews.
    function takeValues(timerOnly) {
        values = manager.myMap;
        liveRows().forEach(row => {
            const leaf = valueAt(row.level1, row.level2, row.level3);
            if (leaf !== null && (!timerOnly || row.followsTimer))
                row.take(leaf);
        });
        countPending();
    }

    function countPending() {
        pendingCommands = manager.getSetMapSize();
    }

    // Hands over what is typed in a field that still has the keyboard.
    function commitTyping() {
        liveRows().forEach(row => row.commit());
    }

    function cancel() {
        page.forceActiveFocus();
        manager.GetLidarModuleInfo(tab);
        takeValues(false);
    }

    function save() {
        commitTyping();
        if (!manager.IsConnected) {
            refused(qsTr("Please connect to lidar first"));
            return;
        }
        if (manager.getSetMapSize() <= 0) {
            refused(qsTr("Nothing to be saved"));
            return;
        }
        outOfRange.names = [];
        outOfRange.enabled = true;
        const inRange = manager.CheckModuleVarsWithinRange(tab);
        outOfRange.enabled = false;
        if (inRange)
            write();
        else
            confirmationWanted(outOfRange.names);
    }

    function write() {
        manager.Run(tab);
        manager.GetLidarModuleInfo(tab);
        takeValues(false);
    }

    onTabChanged: rebuild()
    Component.onCompleted: rebuild()

    Connections {
        target: page.manager
        function onMyMapChanged() { page.takeValues(false); }
        function onMyTimerMapChanged() { page.takeValues(true); }
        function onMonitorContentChanged() { page.rebuild(); }
        function onLidarModelChanged() { page.rebuild(); }
    }

    Connections {
        id: outOfRange

        property var names: []

        target: page.manager
        enabled: false
        function onSomeVarOutOfRange(var_name) { outOfRange.names.push(var_name); }
    }

    SectionTitle {
        id: heading

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: Theme.gapWide
        text: page.title
        description: page.description
    }

    ListView {
        id: list

        objectName: "pageRows"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: heading.bottom
        anchors.topMargin: Theme.gap
        anchors.bottom: saveBar.visible ? saveBar.top : parent.bottom
        clip: true
        focus: true
        model: page.rows
        boundsBehavior: Flickable.StopAtBounds
        // The rows outside the window are made while it is idle and kept, so that a field keeps
        // the keyboard and what is typed in it when it scrolls out of sight.
        cacheBuffer: Theme.rowHeight * 200
        keyNavigationEnabled: false
        T.ScrollBar.vertical: DefaultScrollBar {}

        delegate: PageRow {
            required property int index
            required property var modelData

            width: list.width
            manager: page.manager
            caption: modelData[0]
            kind: modelData[1]
            level1: modelData[2]
            level2: modelData[3]
            level3: modelData[4]
            startsGroup: index > 0 && page.rows[index - 1][3] !== level2
            onEntered: list.positionViewAtIndex(index, ListView.Contain)
            onEdited: page.countPending()
            Component.onCompleted: take(page.valueAt(level1, level2, level3))
        }
    }

    EmptyNote {
        anchors.centerIn: list
        visible: page.rows.length === 0
        text: qsTr("This model has no values to show. Choose another model, or check its table.")
    }

    SaveBar {
        id: saveBar

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        visible: !page.holdsUpgrade && page.rows.length > 0
        hasEdits: page.hasEdits
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
