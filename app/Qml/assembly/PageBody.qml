import QtQuick 2.15
import Tevron 1.0
import "../controls"
import "../theme"

// What a page shows of the lidar: its heading and the rows of its variables; on the page of a monitor
// the monitor, and below it the rows that it does not show itself.
//
// manager   the object that holds the pages (myMap, level2List)
// tab       the page
// title     its name
// upgrade   the window's UpgradeControl
// fovEdits  the page's FovEdits
// written   when rows were read back after the last Save, by their places
// rows      its variables, a PageRows
// current   the row that had the keyboard last, or null
// rebuilt()        the rows are those of another page
// edited()         the user changed a value
// failed(reason)   a recording could not be written
FocusScope {
    id: body

    property var manager
    property int tab: 0
    property string title: ""
    property var upgrade
    property var fovEdits
    property alias written: grid.written
    readonly property alias rows: rows
    readonly property alias current: grid.current
    readonly property int kindFile: 4
    readonly property int kindMonitor: 7
    property bool holdsUpgrade: false
    property bool holdsMonitor: false

    signal rebuilt()
    signal edited()
    signal failed(string reason)

    // Scrolls as a key asks for it; false when that changes nothing.
    function scrollByKey(key) {
        return grid.scrollByKey(key);
    }

    // The row at this place of the page.
    function rowAt(index) {
        return grid.rowAt(index);
    }

    // Takes the keyboard to a row.
    function goTo(level1, level2, level3) {
        const index = rows.RowAt(level1, level2, level3);
        if (index >= 0)
            grid.rowAt(index).forceActiveFocus(Qt.ShortcutFocusReason);
    }

    // The row to go to when something has to be corrected; null without one.
    function faultyRow() {
        const first = rows.FirstFault();
        const index = first >= 0 ? first : rows.FirstFov();
        return index < 0 ? null : grid.rowAt(index);
    }

    PageRows {
        id: rows

        manager: body.manager
        page: body.tab
        onRebuilt: {
            body.holdsUpgrade = HasKind(body.kindFile);
            body.holdsMonitor = HasKind(body.kindMonitor);
            body.rebuilt();
        }
    }

    SectionTitle {
        id: heading

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: Theme.gapWide
        visible: !body.holdsMonitor
        text: body.title
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
        visible: body.holdsMonitor
        manager: body.manager
        rows: rows
        onFailed: body.failed(reason)
    }

    PageGrid {
        id: grid

        objectName: "pageRows"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: body.holdsMonitor ? Math.min(contentHeight, body.height / 3)
                                  : body.height - heading.y - heading.height - Theme.gap
        focus: true
        rows: rows
        manager: body.manager
        fovEdits: body.fovEdits
        upgrade: body.upgrade
        monitor: body.holdsMonitor ? monitor.source : null
        onEdited: body.edited()
    }

    EmptyNote {
        anchors.centerIn: grid
        visible: rows.count === 0
        text: qsTr("This model has no values to show. Choose another model, or check its table.")
    }
}
