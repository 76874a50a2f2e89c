import QtQuick 2.15
import "../theme"

// The line above the pages: a tab for each, the way to the logs, and the field to find something on
// all pages.
//
// titles, currentTab, marked   see TabWidget
// covered          something else is in the place of the page
// offersLogs       this lidar has logs to download
// showsLogs        they are in the place of the page; can be set
// field            the FindField
// selected(tab)    the user wants another page
// pageWanted()     the user wants the page, whatever is in its place
Item {
    id: bar

    property alias titles: tabs.titles
    property alias currentTab: tabs.currentIndex
    property alias marked: tabs.marked
    property bool offersLogs: false
    property bool covered: false
    property alias showsLogs: logsButton.checked
    readonly property alias field: findField

    signal selected(int tab)
    signal pageWanted()

    // Takes the keyboard to the tabs.
    function goToTabs() {
        tabs.forceActiveFocus(Qt.ShortcutFocusReason);
    }

    implicitHeight: tabs.implicitHeight

    TabWidget {
        id: tabs

        objectName: "pageTabs"
        anchors.left: parent.left
        anchors.right: logsButton.left
        anchors.leftMargin: Theme.gap
        anchors.rightMargin: Theme.gap
        resting: bar.covered || (bar.showsLogs && bar.offersLogs)
        onSelected: bar.selected(index)
        onClicked: {
            bar.showsLogs = false;
            bar.pageWanted();
        }
    }

    DefaultToolButton {
        id: logsButton

        objectName: "logsButton"
        anchors.right: findField.left
        anchors.rightMargin: Theme.gap
        anchors.verticalCenter: tabs.verticalCenter
        visible: bar.offersLogs
        width: visible ? implicitWidth : 0
        checkable: true
        text: qsTr("Logs")
        hint: qsTr("Download the logs of the lidar")
        Keys.onReturnPressed: toggle()
        Keys.onEnterPressed: toggle()
    }

    FindField {
        id: findField

        objectName: "findField"
        anchors.right: parent.right
        anchors.rightMargin: Theme.gapWide
        anchors.verticalCenter: tabs.verticalCenter
        onStarted: bar.showsLogs = false
    }
}
