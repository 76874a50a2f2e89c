import QtQuick 2.15
import QtQuick.Layouts 1.15
import QtQuick.Templates 2.15 as T
import "../controls"
import "../theme"

// What was kept of lidars before something changed them, in the place of the page. Enter opens the
// snapshot in hand.
//
// watch     a SettingsWatch
// closed()  the user wants the page back
FocusScope {
    id: panel

    property var watch
    property var snapshots: []
    readonly property var chosen: list.currentIndex >= 0 && list.currentIndex < snapshots.length
                                  ? snapshots[list.currentIndex] : null

    signal closed()

    function open() {
        if (chosen !== null)
            watch.Open(chosen.url);
    }

    function look() {
        if (visible)
            snapshots = watch.Snapshots();
    }

    onVisibleChanged: look()
    Keys.onEscapePressed: closed()

    Connections {
        target: panel.watch
        function onSnapshotTaken() { panel.look(); }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        RowLayout {
            Layout.margins: Theme.gapWide
            Layout.bottomMargin: Theme.gap

            SectionTitle {
                Layout.fillWidth: true
                text: qsTr("Snapshots")
                description: qsTr("The settings of lidars as they were before an upgrade, a reset or a file that was applied. The newest 50 of each lidar are kept.")
            }
            DefaultToolButton {
                objectName: "snapshotsClose"
                Layout.alignment: Qt.AlignTop
                icon.source: "../icons/close.svg"
                iconSize: Theme.smallIconSize
                label: qsTr("Back to the page (Esc)")
                onClicked: panel.closed()
            }
        }

        ListView {
            id: list

            objectName: "snapshotsList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.leftMargin: Theme.gapWide
            Layout.rightMargin: Theme.gapWide
            focus: true
            activeFocusOnTab: true
            clip: true
            model: panel.snapshots
            boundsBehavior: Flickable.StopAtBounds
            T.ScrollBar.vertical: DefaultScrollBar {}
            Keys.onReturnPressed: panel.open()
            Keys.onEnterPressed: panel.open()

            delegate: SnapshotRow {
                required property int index
                required property var modelData

                objectName: "snapshot_" + index
                width: ListView.view.width
                snapshot: modelData
                firmware: panel.watch.FirmwareOf(modelData.url)
                chosen: ListView.isCurrentItem
                focused: chosen && list.activeFocus
                onClicked: {
                    list.currentIndex = index;
                    list.forceActiveFocus(Qt.MouseFocusReason);
                }
                onOpened: panel.open()
            }

            EmptyNote {
                objectName: "snapshotsEmpty"
                anchors.centerIn: parent
                width: parent.width
                visible: list.count === 0
                text: qsTr("Nothing is kept yet. A snapshot is saved before every upgrade, reset and apply.")
            }
        }

        Rectangle {
            Layout.fillWidth: true
            implicitHeight: Theme.hairline
            color: Theme.outlineColor
        }

        RowLayout {
            Layout.margins: Theme.gap
            Layout.leftMargin: Theme.gapWide
            Layout.rightMargin: Theme.gapWide
            spacing: Theme.gap

            Item { Layout.fillWidth: true }
            DefaultButton {
                objectName: "snapshotOpen"
                enabled: panel.chosen !== null
                text: qsTr("Open")
                hint: qsTr("Show what was kept (Enter)")
                onClicked: panel.open()
            }
            DefaultButton {
                objectName: "snapshotCompare"
                enabled: panel.chosen !== null
                emphasised: enabled
                text: qsTr("Compare with the lidar")
                hint: qsTr("Show what differs from the lidar now; it can be applied from there")
                onClicked: panel.watch.Compare(panel.chosen.url, false)
            }
        }
    }
}
