import QtQuick 2.15
import "../controls"
import "../theme"

// Which lidar an upgrade is for, what it runs, and what Start does.
//
// upgrade  an UpgradeControl
Column {
    id: plan

    property var upgrade

    spacing: Theme.gapTiny

    Repeater {
        model: [
            [qsTr("Lidar"), !plan.upgrade.manager.IsConnected ? qsTr("Not connected")
                          : [plan.upgrade.modelName, plan.upgrade.watch.serialNumber].filter(text => text).join(", ")],
            [qsTr("Runs now"), plan.upgrade.watch.runningVersion || Theme.unreadText],
            [qsTr("Start does"), plan.upgrade.watch.takesPackages
                ? qsTr("The components that the lidar needs are sent, one after another; then it is restarted and its versions are read again. The lidar does not measure meanwhile.")
                : qsTr("The file is sent and the lidar restarted; the program connects again and reads which version it runs then. The lidar does not measure meanwhile.")]
        ]

        Row {
            width: plan.width
            spacing: Theme.gap

            PlainText {
                id: name

                width: Theme.serialCaptionWidth
                text: modelData[0]
                color: Theme.quietTextColor
            }
            PlainText {
                width: parent.width - name.width - parent.spacing
                text: modelData[1]
                wrapMode: Text.Wrap
                Accessible.role: Accessible.StaticText
                Accessible.name: modelData[0] + ": " + text
            }
        }
    }
}
