import QtQuick 2.15
import QtQuick.Layouts 1.15
import "../controls"
import "../theme"

// What the settings menu brings, in the place of the page: of this, the logs and what was found, the
// one that was opened last is in view. A task that runs while none of it is in view has a line of its
// own.
//
// settings  a SettingsControl
// bar       the PageBar; finder  the FindControl
FocusScope {
    id: area

    property var settings
    property var bar
    property var finder
    readonly property var watch: settings.watch
    readonly property bool shown: settings.view !== ""

    function close() {
        settings.close();
        bar.goToTabs();
    }

    Connections {
        target: area.settings
        function onViewChanged() {
            if (!area.shown)
                return;
            area.bar.showsLogs = false;
            area.finder.close();
            area.forceActiveFocus(Qt.OtherFocusReason);
        }
    }
    Connections {
        target: area.watch
        function onComparedAnew() { area.forceActiveFocus(Qt.OtherFocusReason); }
    }
    Connections {
        target: area.bar
        function onShowsLogsChanged() { if (area.bar.showsLogs) area.settings.close(); }
        function onPageWanted() { area.settings.close(); }
    }
    Connections {
        target: area.finder
        function onFindingChanged() { if (area.finder.finding) area.settings.close(); }
    }

    SettingsPanel {
        objectName: "settingsPanel"
        anchors.fill: parent
        visible: area.settings.view === "comparison"
        focus: visible
        watch: area.watch
        onApplyWanted: area.settings.applyAsked()
        onClosed: area.close()
    }

    SnapshotsPanel {
        objectName: "snapshotsPanel"
        anchors.fill: parent
        visible: area.settings.view === "snapshots"
        focus: visible
        watch: area.watch
        onClosed: area.close()
    }

    Panel {
        objectName: "settingsBusy"
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.barHeight
        visible: area.watch.running && area.settings.view !== "comparison"

        RowLayout {
            spacing: Theme.gapWide

            LoadingWidget {
                running: true
                text: area.watch.activity
                progress: area.watch.fraction
            }
            DefaultButton {
                objectName: "settingsBusyCancel"
                enabled: !area.watch.cancelling
                text: area.watch.cancelling ? qsTr("Ending…") : qsTr("Cancel")
                onClicked: area.watch.Cancel()
            }
        }
    }
}
