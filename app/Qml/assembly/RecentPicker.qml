import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../controls"
import "../theme"

// Drops down the lidars that were connected last.
//
// entries        maps with a "label", see RecentLidars
// chosen(entry)  one of them was picked
DefaultToolButton {
    id: button

    property var entries: []

    signal chosen(var entry)

    width: Theme.controlHeight
    label: qsTr("Recent lidars")
    icon.source: "../icons/chevron.svg"
    enabled: entries.length > 0
    opened: list.visible
    onClicked: list.open()

    T.Popup {
        id: list

        objectName: "recentList"
        y: button.height + Theme.radiusSmall
        width: Theme.portListWidth
        implicitHeight: contentItem.implicitHeight + 2 * padding
        padding: Theme.gapTiny
        margins: Theme.gap
        focus: true
        closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside

        background: Rectangle {
            color: Theme.trenchColor
            border.width: Theme.hairline
            border.color: Theme.outlineHoverColor
            radius: Theme.radiusSmall
        }

        contentItem: ListView {
            implicitHeight: contentHeight
            clip: true
            focus: true
            model: button.entries
            boundsBehavior: Flickable.StopAtBounds
            Keys.onReturnPressed: if (currentItem) currentItem.clicked()

            delegate: MenuEntry {
                required property int index
                required property var modelData

                objectName: "recent_" + index
                width: ListView.view.width
                text: modelData.label
                highlighted: ListView.isCurrentItem || hovered
                onClicked: {
                    list.close();
                    button.chosen(modelData);
                }
            }
        }
    }
}
