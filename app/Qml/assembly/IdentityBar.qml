import QtQuick 2.15
import QtQuick.Layouts 1.15
import "../controls"
import "../theme"

// Which lidar is connected, so that a picture of the window tells it, and when it was last read.
//
// watch   how it stands with the connection, a LinkWatch
// paced   the page in view is read again every few seconds
RowLayout {
    id: bar

    property var watch
    property bool paced: false

    spacing: Theme.gapWide

    Repeater {
        model: [[qsTr("PN"), bar.watch.partNumber, "identityPn"],
                [qsTr("SN"), bar.watch.serialNumber, "identitySn"],
                [qsTr("Firmware"), bar.watch.version, "identityVersion"],
                [qsTr("At"), bar.watch.place, "identityPlace"]]

        RowLayout {
            Layout.maximumWidth: implicitWidth
            spacing: Theme.gapTiny

            PlainText {
                text: modelData[0]
                color: Theme.quietTextColor
            }
            PlainText {
                objectName: modelData[2]
                Layout.fillWidth: true
                text: modelData[1] || Theme.unreadText
                font: Theme.boldFont
                elide: Text.ElideRight
                Accessible.role: Accessible.StaticText
                Accessible.name: modelData[0] + ": " + text
            }
        }
    }

    LinkSecurity { text: bar.watch.security }

    Item { Layout.fillWidth: true }

    PlainText {
        objectName: "identityReadAt"
        visible: bar.watch.readsView
        text: bar.watch.readAt === "" ? qsTr("not read yet")
            : bar.paced ? qsTr("read %1 · every 3 s").arg(bar.watch.readAt)
                        : qsTr("read %1").arg(bar.watch.readAt)
        font: Theme.captionFont
        color: Theme.quietTextColor
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
}
