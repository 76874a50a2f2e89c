import QtQuick 2.15
import QtQuick.Layouts 1.15
import "../controls"
import "../theme"

// Two sides of settings beside each other, in the place of the page: what differs, and which of it is
// to be written to the lidar.
//
// watch            a SettingsWatch that has compared something
// applyWanted()    what is ticked is to be written
// closed()         the user wants the page back
FocusScope {
    id: panel

    property var watch
    readonly property var rows: watch.rows
    readonly property bool twoSides: watch.right.title !== undefined

    signal applyWanted()
    signal closed()

    Keys.onEscapePressed: closed()

    Rectangle {
        anchors.fill: parent
        color: Theme.windowColor
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        SettingsHead {
            Layout.fillWidth: true
            Layout.margins: Theme.gapWide
            Layout.bottomMargin: Theme.gap
            watch: panel.watch
            twoSides: panel.twoSides
            onClosed: panel.closed()
        }

        SettingsFilter {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.gapWide
            Layout.rightMargin: Theme.gapWide
            Layout.bottomMargin: Theme.gap
            rows: panel.rows
            twoSides: panel.twoSides
        }

        SettingsTable {
            objectName: "settingsTable"
            Layout.fillWidth: true
            Layout.fillHeight: true
            focus: true
            rows: panel.rows
            twoSides: panel.twoSides
            withTicks: panel.watch.withLidar && panel.watch.refusal === ""
            locked: panel.watch.running
            leftTitle: panel.watch.withLidar || !panel.twoSides ? qsTr("File") : qsTr("Left")
            rightTitle: panel.watch.withLidar ? qsTr("Lidar") : qsTr("Right")
        }

        SettingsFoot {
            Layout.fillWidth: true
            watch: panel.watch
            onApplyWanted: panel.applyWanted()
        }
    }
}
