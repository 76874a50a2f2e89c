import QtQuick 2.15
import QtQuick.Layouts 1.15
import "../controls"
import "../theme"

// One snapshot: when and why it was saved, and of which lidar. A double click opens it.
//
// snapshot   a map, see SettingsWatch; firmware  what the lidar ran then
// chosen     it is in hand; focused  and the keyboard is here
Item {
    id: row

    property var snapshot: ({})
    property string firmware: ""
    property bool chosen: false
    property bool focused: false

    signal clicked()
    signal opened()

    implicitHeight: Theme.rowHeight

    Accessible.role: Accessible.ListItem
    Accessible.name: [snapshot.time, snapshot.reason, snapshot.model, snapshot.serial, firmware].join(", ")

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusSmall
        color: row.chosen || area.containsMouse ? Theme.controlColor : "transparent"

        FocusRing {
            anchors.margins: 0
            shown: row.focused
        }
    }

    MouseArea {
        id: area

        anchors.fill: parent
        hoverEnabled: true
        onClicked: row.clicked()
        onDoubleClicked: row.opened()
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.gap
        anchors.rightMargin: Theme.gap
        spacing: Theme.gapWide

        Repeater {
            model: [row.snapshot.time, row.snapshot.reason, row.snapshot.model,
                    row.snapshot.serial || Theme.unreadText, row.firmware || Theme.unreadText]

            PlainText {
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                text: modelData
                color: index < 2 ? Theme.textColor : Theme.quietTextColor
                elide: Text.ElideRight
            }
        }
    }
}
