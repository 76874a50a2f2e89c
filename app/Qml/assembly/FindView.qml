import QtQuick 2.15
import Tevron 1.0
import "../controls"
import "../theme"

// What a search over the names, values and pages of the whole model finds, in rows that can be edited
// where they stand. Edits belong to one page at a time, the page in view: while it has some, the rows
// of other pages cannot be changed.
//
// tab       the page in view
// text      the words to look for
// holdsTab  that page has edits
// current   the row that had the keyboard last
// edited()         the user changed a value
// pageWanted(tab)  a row of another page got the keyboard: that page is to be the one in view
// rowWanted(row)   the user wants to see the row on its page
FocusScope {
    id: view

    property var manager
    property int tab: 0
    property string text: ""
    property bool holdsTab: false
    property alias written: grid.written
    readonly property alias current: grid.current
    readonly property bool asks: text.trim().length > 0 || onlyEdited.checked || onlyChanged.checked

    signal edited()
    signal pageWanted(int tab)
    signal rowWanted(var row)

    // Looks for it now; what is typed waits for a pause.
    function search() {
        pause.stop();
        found.Search(visible ? text : "", visible && onlyEdited.checked, visible && onlyChanged.checked);
    }

    // The next search begins with all values.
    function clearFilters() {
        onlyEdited.checked = false;
        onlyChanged.checked = false;
    }

    // Brings the rows up to date, all of them or those that the periodic refresh renews.
    function take() {
        found.TakeAll();
    }
    function takeTimed() {
        found.TakeTimed();
    }

    // Takes the keyboard to the first row.
    function goToFirst() {
        search();
        if (found.count > 0)
            grid.rowAt(0).takeKeyboard();
    }

    function scrollByKey(key) {
        return grid.scrollByKey(key);
    }

    function showPage() {
        current.commit();
        rowWanted(current);
    }

    onTextChanged: pause.restart()
    onVisibleChanged: search()

    Timer {
        id: pause

        interval: Theme.searchPauseMs
        onTriggered: view.search()
    }

    PageRows {
        id: found

        manager: view.manager
        page: -1
    }

    Connections {
        target: view.manager
        enabled: view.visible
        function onMonitorContentChanged() { found.Rebuild(); }
    }

    Flow {
        id: wishes

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: Theme.gapWide
        spacing: Theme.gap

        ToggleChip {
            id: onlyEdited

            objectName: "findEdited"
            text: qsTr("Edited")
            label: qsTr("Only values that are edited and not saved")
            onToggled: view.search()
        }
        ToggleChip {
            id: onlyChanged

            objectName: "findChanged"
            text: qsTr("Not default")
            label: qsTr("Only settings that are known to differ from the model's default")
            onToggled: view.search()
        }
        PlainText {
            objectName: "findCount"
            height: Theme.smallControlHeight
            verticalAlignment: Text.AlignVCenter
            font: Theme.captionFont
            color: Theme.quietTextColor
            text: {
                if (found.count === 0)
                    return "";
                const count = found.foundCount > found.count
                    ? qsTr("the first %1 of %2").arg(found.count).arg(found.foundCount)
                    : found.count === 1 ? qsTr("1 found") : qsTr("%1 found").arg(found.count);
                const keys = qsTr("%1 · a click on a name, or Ctrl+Enter, shows it on its page").arg(count);
                return view.holdsTab ? qsTr("%1 · other pages can be edited once %2 is saved or cancelled")
                                       .arg(count).arg(view.manager.level1List[view.tab]) : keys;
            }
        }
    }

    PageGrid {
        id: grid

        objectName: "foundRows"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: wishes.bottom
        anchors.topMargin: Theme.gap
        anchors.bottom: parent.bottom
        focus: true
        rows: found
        manager: view.manager
        linked: true
        openPage: view.holdsTab ? view.tab : -1
        onEdited: view.edited()
        onEntered: if (level1 !== view.tab && !view.holdsTab) view.pageWanted(level1)
        onPageWanted: view.rowWanted(row)
    }

    EmptyNote {
        anchors.centerIn: grid
        visible: found.count === 0 && !pause.running
        text: view.asks ? qsTr("Nothing found. Values are only known of pages that were read.")
                        : qsTr("Type a part of a name, of a value or of a page.")
    }

    Shortcut {
        sequences: ["Ctrl+Return", "Ctrl+Enter"]
        enabled: view.visible && view.current !== null
        onActivated: view.showPage()
    }
}
