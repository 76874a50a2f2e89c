import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../controls"
import "../theme"

// The gear button with what can be done to the lidar as a whole. Both are asked about first, by
// whoever listens.
DefaultToolButton {
    id: gear

    signal restartWanted()
    signal resetWanted()

    label: qsTr("Restart or reset the lidar")
    icon.source: "../icons/gear.svg"
    opened: menu.visible
    onClicked: menu.open()

    T.Popup {
        id: menu

        objectName: "gearMenu"
        x: gear.width - width
        y: gear.height + Theme.gapTiny
        width: Theme.fieldWidth
        implicitHeight: contentItem.implicitHeight + 2 * padding
        padding: Theme.gapTiny
        margins: Theme.gap
        focus: true
        closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
        onOpened: restartEntry.forceActiveFocus(Qt.TabFocusReason)

        background: Rectangle {
            color: Theme.trenchColor
            border.width: Theme.hairline
            border.color: Theme.outlineHoverColor
            radius: Theme.radiusSmall
        }

        contentItem: Column {
            MenuEntry {
                id: restartEntry

                objectName: "restartEntry"
                width: parent.width
                text: qsTr("Restart the lidar…")
                KeyNavigation.down: resetEntry
                onClicked: {
                    menu.close();
                    gear.restartWanted();
                }
            }
            MenuEntry {
                id: resetEntry

                objectName: "resetEntry"
                width: parent.width
                text: qsTr("Reset to factory settings…")
                KeyNavigation.up: restartEntry
                onClicked: {
                    menu.close();
                    gear.resetWanted();
                }
            }
        }
    }
}
