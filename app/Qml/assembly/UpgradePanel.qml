import QtQuick 2.15
import QtQuick.Layouts 1.15
import "../controls"
import "../theme"

// A firmware upgrade: the file, what is about to happen, how far it has come and what came of it.
//
// upgrade        an UpgradeControl
// startWanted()  the user wants the chosen file to be sent
FocusScope {
    id: panel

    property var upgrade

    signal startWanted()

    implicitHeight: column.implicitHeight

    Column {
        id: column

        width: parent.width
        spacing: Theme.gapWide

        UpgradeFileBox {
            width: parent.width
            focus: true
            upgrade: panel.upgrade
        }

        UpgradeOutcome {
            width: parent.width
            visible: panel.upgrade.outcome.length > 0
            upgrade: panel.upgrade
        }

        UpgradePlan {
            width: parent.width
            visible: !panel.upgrade.running && panel.upgrade.outcome.length === 0
            upgrade: panel.upgrade
        }

        UpgradeProgress {
            width: parent.width
            visible: panel.upgrade.running
            upgrade: panel.upgrade
        }

        UpgradeSteps {
            width: parent.width
            visible: panel.upgrade.running || panel.upgrade.outcome.length > 0
            steps: panel.upgrade.watch.steps
        }

        RowLayout {
            width: parent.width
            spacing: Theme.gapWide

            PlainText {
                objectName: "upgradeAdvice"
                Layout.fillWidth: true
                text: panel.upgrade.waiting
                      ? qsTr("The program tries to reach the lidar until it answers. If you stop waiting, its firmware stays unknown.")
                      : panel.upgrade.running
                        ? qsTr("Leave power and connection alone until the upgrade has ended.")
                        : panel.upgrade.obstacle || panel.upgrade.missing
                color: !panel.upgrade.running && panel.upgrade.obstacle.length > 0
                       ? Theme.warningColor : Theme.quietTextColor
                wrapMode: Text.Wrap
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            DefaultButton {
                objectName: "stopWaiting"
                visible: panel.upgrade.waiting
                text: qsTr("Stop Waiting")
                hint: qsTr("Give up waiting for the lidar to come back")
                onClicked: panel.upgrade.stopWaiting()
            }
            DefaultButton {
                objectName: "startUpgrade"
                visible: !panel.upgrade.running
                enabled: panel.upgrade.obstacle.length === 0 && panel.upgrade.missing.length === 0
                emphasised: true
                text: qsTr("Start Upgrade")
                hint: qsTr("Send the file to the lidar and restart it")
                onClicked: panel.startWanted()
            }
        }
    }
}
