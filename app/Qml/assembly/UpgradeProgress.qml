import QtQuick 2.15
import "../controls"
import "../theme"

// How far the transfer has come, how fast it goes and how long it will take.
//
// upgrade  an UpgradeControl
Column {
    id: progress

    property var upgrade
    readonly property var watch: upgrade.watch
    readonly property real share: watch.totalKib > 0 ? watch.sentKib / watch.totalKib
                                                     : upgrade.sending ? 0 : 1

    // A time that is not told more exactly than it is known.
    function duration(seconds) {
        if (seconds < 10)
            return qsTr("a few seconds left");
        if (seconds < 90)
            return qsTr("about %1 s left").arg(5 * Math.ceil(seconds / 5));
        return qsTr("about %1 min left").arg(Math.ceil(seconds / 60));
    }

    function pace(kibPerSecond) {
        return qsTr("%1 KiB/s").arg(kibPerSecond < 10 ? kibPerSecond.toFixed(1)
                                                      : Math.round(kibPerSecond));
    }

    spacing: Theme.gap

    Accessible.role: Accessible.ProgressBar
    Accessible.name: qsTr("%1 %2 %").arg(amount.text).arg(Math.floor(100 * share))

    ProgressTrack {
        objectName: "upgradeBar"
        width: parent.width
        progress: progress.share
    }

    Item {
        width: parent.width
        height: amount.implicitHeight

        PlainText {
            id: amount

            objectName: "upgradeAmount"
            text: progress.upgrade.sending ? qsTr("%1 of %2 KiB sent").arg(progress.watch.sentKib)
                                                                      .arg(progress.watch.totalKib)
                                           : qsTr("%1 KiB sent").arg(progress.watch.sentKib)
        }
        PlainText {
            objectName: "upgradePace"
            anchors.right: parent.right
            visible: progress.upgrade.sending && progress.watch.kibPerSecond > 0
            text: progress.pace(progress.watch.kibPerSecond) + "  ·  "
                  + progress.duration(progress.watch.secondsLeft)
            color: Theme.quietTextColor
        }
    }
}
