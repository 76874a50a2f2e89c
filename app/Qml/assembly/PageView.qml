import QtQuick 2.15
import QtQuick.Window 2.15
import QtQuick.Templates 2.15 as T
import Tevron 1.0
import "../controls"
import "../theme"

// One page of the lidar's variables with its rows and, below them, Save and Cancel.
//
// manager  the object that holds the pages (myMap, level2List) and reads and writes them
// tab      the page that is shown
// upgrade  the window's UpgradeControl
//
// Save asks before it writes values out of their range: confirmationWanted(names) is answered by
// calling write() or nothing.
FocusScope {
    id: page

    property var manager
    property int tab: 0
    property var upgrade
    property string title: ""
    readonly property int kindFile: 4
    readonly property bool hasEdits: pendingCommands > 0 || typing
    // A field of the page holds text that was not confirmed yet.
    readonly property bool typing: {
        const item = Window.activeFocusItem;
        return activeFocus && item !== null && item.typing === true && item.text !== item.value;
    }
    property int pendingCommands: 0
    property bool holdsUpgrade: false

    signal refused(string reason)
    signal confirmationWanted(var names)

    // Brings the rows up to date that show something else.
    function takeValues() {
        rows.TakeAll();
        countPending();
    }

    function countPending() {
        pendingCommands = manager.getSetMapSize();
    }

    // Hands over what is typed in the field that still has the keyboard.
    function commitTyping() {
        if (list.currentItem !== null)
            list.currentItem.commit();
    }

    function cancel() {
        page.forceActiveFocus();
        manager.GetLidarModuleInfo(tab);
        fov.cancelled();
        takeValues();
    }

    function save() {
        commitTyping();
        saving.save();
    }

    function write() {
        saving.write();
    }

    Connections {
        target: page.manager
        function onMyMapChanged() { page.takeValues(); }
        function onMyTimerMapChanged() {
            rows.TakeTimed();
            page.countPending();
        }
        function onMonitorContentChanged() { rows.Rebuild(); }
        function onLidarModelChanged() { rows.Rebuild(); }
    }

    PageRows {
        id: rows

        manager: page.manager
        page: page.tab
        onRebuilt: {
            page.holdsUpgrade = HasKind(page.kindFile);
            page.countPending();
        }
    }

    FovEdits {
        id: fov

        manager: page.manager
    }

    SaveControl {
        id: saving

        manager: page.manager
        tab: page.tab
        pageRows: rows
        fovEdits: fov
        onRefused: page.refused(reason)
        onConfirmationWanted: page.confirmationWanted(names)
        onReread: page.takeValues()
    }

    SectionTitle {
        id: heading

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: Theme.gapWide
        text: page.title
        description: rows.description
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
        model: rows
        boundsBehavior: Flickable.StopAtBounds
        // The row that has the keyboard is the current one, which is kept when it scrolls out of
        // sight: what is being typed in it stays.
        currentIndex: -1
        highlightFollowsCurrentItem: false
        // Tab walks through the rows that exist, so there are some beyond the edges.
        cacheBuffer: Theme.rowHeight * 40
        keyNavigationEnabled: false
        T.ScrollBar.vertical: DefaultScrollBar {}

        delegate: PageRow {
            required property int index

            width: list.width
            manager: page.manager
            fovEdits: fov
            upgrade: page.upgrade
            onEntered: {
                list.currentIndex = index;
                list.positionViewAtIndex(index, ListView.Contain);
            }
            onEdited: {
                rows.TakeRow(index);
                page.countPending();
            }
        }
    }

    EmptyNote {
        anchors.centerIn: list
        visible: rows.count === 0
        text: qsTr("This model has no values to show. Choose another model, or check its table.")
    }

    SaveBar {
        id: saveBar

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        visible: !page.holdsUpgrade && rows.count > 0
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
