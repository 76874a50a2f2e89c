import QtQuick 2.15
import "../controls"
import "../theme"

// What came of an upgrade.
//
// upgrade  an UpgradeControl
Rectangle {
    id: outcome

    property var upgrade
    readonly property bool failed: upgrade.watch.failed
    readonly property color tone: failed ? Theme.errorColor : Theme.successColor

    implicitHeight: words.implicitHeight + 2 * Theme.gapWide
    radius: Theme.radius
    color: Theme.trenchColor
    border.width: Theme.hairline
    border.color: tone

    Icon {
        id: mark

        anchors.left: parent.left
        anchors.leftMargin: Theme.gapWide
        anchors.verticalCenter: parent.verticalCenter
        source: outcome.failed ? "../icons/error.svg" : "../icons/success.svg"
        color: outcome.tone
    }
    PlainText {
        id: words

        objectName: "upgradeOutcome"
        anchors.left: mark.right
        anchors.right: parent.right
        anchors.margins: Theme.gapWide
        anchors.verticalCenter: parent.verticalCenter
        text: outcome.upgrade.watch.fileName.length === 0 ? outcome.upgrade.outcome
            : qsTr("%1: %2").arg(outcome.upgrade.watch.fileName).arg(outcome.upgrade.outcome)
        wrapMode: Text.Wrap
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
}
