import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../controls"
import "../theme"

// The button with what can be done with the lidar's settings as files.
//
// locked         settings are being applied: what would need the lidar is not offered
// wanted(what)   "save", "compare", "files", "apply", "snapshots" or "bundle"
DefaultToolButton {
    id: button

    property bool locked: false

    readonly property var entries: [
        { "what": "save", "text": qsTr("Save settings…") },
        { "what": "compare", "text": qsTr("Compare with a file…") },
        { "what": "files", "text": qsTr("Compare two files…") },
        { "what": "apply", "text": qsTr("Apply a file…") },
        { "what": "snapshots", "text": qsTr("Snapshots…") },
        { "what": "bundle", "text": qsTr("Support bundle…") }
    ]

    signal wanted(string what)

    text: qsTr("Settings file")
    hint: qsTr("Save, compare and apply the lidar's settings")
    icon.source: "../icons/file.svg"
    enabled: !locked
    opened: menu.visible
    onClicked: menu.open()

    T.Popup {
        id: menu

        objectName: "settingsMenu"
        y: button.height + Theme.gapTiny
        width: Theme.fieldWidth
        implicitHeight: contentItem.implicitHeight + 2 * padding
        padding: Theme.gapTiny
        margins: Theme.gap
        focus: true
        closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
        onOpened: list.currentIndex = 0

        background: Rectangle {
            color: Theme.trenchColor
            border.width: Theme.hairline
            border.color: Theme.outlineHoverColor
            radius: Theme.radiusSmall
        }

        contentItem: ListView {
            id: list

            implicitHeight: contentHeight
            focus: true
            model: button.entries
            boundsBehavior: Flickable.StopAtBounds
            Keys.onReturnPressed: if (currentItem) currentItem.clicked()
            Keys.onEnterPressed: if (currentItem) currentItem.clicked()

            delegate: MenuEntry {
                required property var modelData

                objectName: "settings_" + modelData.what
                width: ListView.view.width
                text: modelData.text
                highlighted: ListView.isCurrentItem || hovered
                onClicked: {
                    menu.close();
                    button.wanted(modelData.what);
                }
            }
        }
    }
}
