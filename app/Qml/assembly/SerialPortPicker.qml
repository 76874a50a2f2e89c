import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../controls"
import "../theme"

// A serial port: a device path can be typed, or picked from the ports of this computer. The ports
// are listed when the list is opened, and no port is opened by it.
//
// value            the device path that is set
// ports            the ports to pick from, maps with "device" and "label"
// listWanted()     the list is being opened: bring `ports` up to date
// picked(device)   the user typed or picked another port
FocusScope {
    id: picker

    property string value: ""
    property var ports: []
    property string label: ""

    signal listWanted()
    signal picked(string device)

    implicitWidth: Theme.portFieldWidth
    implicitHeight: Theme.controlHeight

    DefaultTextField {
        id: field

        objectName: picker.objectName + "_field"
        anchors.left: parent.left
        anchors.right: button.left
        focus: true
        value: picker.value
        label: picker.label
        hint: qsTr("Device path of the serial port, like /dev/ttyUSB0 or /dev/pts/5")
        onCommitted: picker.picked(text)
    }

    DefaultToolButton {
        id: button

        objectName: picker.objectName + "_list"
        anchors.right: parent.right
        width: Theme.controlHeight
        label: qsTr("List the serial ports")
        icon.source: "../icons/chevron.svg"
        opened: list.visible
        onClicked: {
            picker.listWanted();
            list.open();
        }
    }

    T.Popup {
        id: list

        y: picker.height + Theme.radiusSmall
        width: Math.max(picker.width, Theme.portListWidth)
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
            implicitHeight: Math.max(Theme.controlHeight, Math.min(contentHeight, 8 * Theme.controlHeight))
            clip: true
            focus: true
            model: picker.ports
            boundsBehavior: Flickable.StopAtBounds
            T.ScrollBar.vertical: DefaultScrollBar {}
            Keys.onReturnPressed: if (currentItem) currentItem.clicked()

            delegate: MenuEntry {
                required property int index
                required property var modelData

                width: ListView.view.width
                text: modelData.label
                highlighted: ListView.isCurrentItem || hovered
                onClicked: {
                    list.close();
                    if (modelData.device !== picker.value)
                        picker.picked(modelData.device);
                }
            }

            EmptyNote {
                anchors.centerIn: parent
                visible: parent.count === 0
                text: qsTr("No serial port was found; plug the adapter in or type its path.")
            }
        }
    }
}
