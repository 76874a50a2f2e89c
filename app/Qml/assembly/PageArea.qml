import QtQuick 2.15
import Tevron 1.0

// What the lidar shows of itself: over the network its pages, one a tab; over a serial line the
// panels of its model.
Item {
    id: area

    property var manager
    property string modelName: ""
    property var upgrade
    property var settings
    property int currentTab: 0
    readonly property bool network: manager.connectType === 0
    // What is typed counts.
    readonly property bool hasEdits: network ? page.hasEdits
                                             : serial.item !== null && serial.item.hasEdits
    // The page's edits are on their way to the lidar.
    readonly property alias saving: page.saving

    signal refused(string reason)
    signal confirmationWanted(var names)
    signal restartWanted()
    // Another page is wanted while this one has edits: answered by selectTab() or nothing.
    signal leaveAsked(int tab)

    // Writes the edits of the page in view, whatever their values, and does `next`, where there is
    // one, once nothing is left to be saved or lost.
    function write(next) {
        page.write(next && whenSettled(next));
    }

    // Saves what is edited, and does `next` in the same way.
    function settle(next) {
        if (!network) {
            serial.item.settle(whenSettled(next));
            return;
        }
        page.forceActiveFocus();
        hasEdits ? page.save(whenSettled(next)) : next();
    }

    function whenSettled(next) {
        return () => {
            if (!hasEdits)
                Qt.callLater(next);
        };
    }

    // Drops what is edited.
    function discard() {
        if (network)
            page.discard();
        else
            serial.item.discard();
    }

    // Shows another page, and goes to the row on it that was asked for.
    function selectTab(tab) {
        settings.close();
        bar.showsLogs = false;
        finder.finding = false;
        changePage(tab);
        finder.arrive();
    }

    // Edits belong to the page they were made on: they go with it.
    function changePage(tab) {
        page.release(() => {
            manager.ClearSetMap();
            manager.setModuleIndexUse(tab);
            LongCalls.Run(() => manager.GetLidarModuleInfo(tab));
            currentTab = tab;
        });
    }

    function showTabs() {
        bar.titles = manager.level1List;
    }

    function rebuild() {
        showTabs();
        finder.close();
        currentTab = 0;
        manager.setModuleIndexUse(0);
    }

    Component.onCompleted: rebuild()

    // Keys that the tabs have no use for scroll the page below them.
    Keys.onPressed: event.accepted = page.visible && event.modifiers === Qt.NoModifier
                                     && page.scrollByKey(event.key)

    Connections {
        target: area.manager
        function onLidarModelChanged() { area.rebuild(); }
        function onLidarClearModel() { bar.titles = []; }
        function onLidarShowModel() { area.showTabs(); }
    }

    PageBar {
        id: bar

        anchors.left: parent.left
        anchors.right: parent.right
        visible: area.network
        currentTab: area.currentTab
        marked: page.hasEdits ? [area.currentTab] : []
        offersLogs: logs.offersAny
        covered: settingsArea.shown
        onSelected: {
            finder.wanted = null;
            area.hasEdits ? area.leaveAsked(tab) : area.selectTab(tab);
        }
        onPageWanted: finder.close()
    }

    FindControl {
        id: finder

        area: area
        field: bar.field
        page: page
        onEnded: bar.goToTabs()
    }

    PageView {
        id: page

        objectName: "pageView"
        anchors.top: bar.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        visible: area.network && !logs.visible && !settingsArea.shown
        manager: area.manager
        tab: area.currentTab
        upgrade: area.upgrade
        finding: finder.finding
        searchText: bar.field.text
        title: bar.titles.length > area.currentTab ? bar.titles[area.currentTab] : ""
        onRefused: area.refused(reason)
        onConfirmationWanted: area.confirmationWanted(names)
        onPageWanted: area.changePage(tab)
        onRowWanted: finder.goTo(row)
        Keys.onEscapePressed: {
            event.accepted = finder.finding;
            if (finder.finding)
                finder.leave();
        }
    }

    LogsPanel {
        id: logs

        objectName: "logsPanel"
        anchors.fill: page
        visible: area.network && offersAny && bar.showsLogs
        manager: area.manager
    }

    SettingsArea {
        id: settingsArea

        anchors.fill: area.network ? page : parent
        settings: area.settings
        bar: bar
        finder: finder
    }

    Loader {
        id: serial

        anchors.fill: parent
        active: !area.network
        visible: !settingsArea.shown
        sourceComponent: Lumo {
            manager: area.manager
            modelName: area.modelName
            upgrade: area.upgrade
            onRefused: area.refused(reason)
            onRestartWanted: area.restartWanted()
        }
    }
}
