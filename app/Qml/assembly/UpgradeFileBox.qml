import QtQuick 2.15
import QtQuick.Layouts 1.15
import Qt.labs.platform 1.1 as Platform
import "../controls"
import "../theme"

// The file of an upgrade: it is attached or dropped here, and what is wrong with it is said.
//
// upgrade  an UpgradeControl
FocusScope {
    id: box

    property var upgrade
    readonly property var file: upgrade.file
    readonly property bool refused: file.problem.length > 0
    readonly property bool empty: !upgrade.chosen && !upgrade.running

    implicitHeight: content.implicitHeight + 2 * Theme.gapWide

    Rectangle {
        anchors.fill: parent
        radius: Theme.radius
        color: drop.containsDrag ? Theme.selectionColor : Theme.panelColor
        border.width: drop.containsDrag ? Theme.focusWidth : Theme.hairline
        border.color: drop.containsDrag ? Theme.accentColor
                    : box.refused ? Theme.errorColor : Theme.outlineColor
    }

    DropArea {
        id: drop

        objectName: "upgradeDrop"
        anchors.fill: parent
        enabled: !box.upgrade.running
        onEntered: drag.accepted = drag.hasUrls
        onDropped: box.upgrade.choose(drop.urls)
    }

    RowLayout {
        id: content

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        anchors.margins: Theme.gapWide
        spacing: Theme.gapWide

        Icon {
            visible: !box.empty
            source: box.refused ? "../icons/error.svg" : "../icons/file.svg"
            color: box.refused ? Theme.errorColor : Theme.quietTextColor
        }

        Column {
            Layout.fillWidth: true
            spacing: Theme.gapTiny

            PlainText {
                objectName: "upgradeFileName"
                width: parent.width
                text: drop.containsDrag ? qsTr("Drop the upgrade package to choose it")
                    : box.upgrade.running ? box.upgrade.watch.fileName
                    : box.empty ? qsTr("No upgrade package chosen")
                    : box.file.name || box.file.url.toString()
                font: Theme.boldFont
                elide: Text.ElideMiddle
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            PlainText {
                objectName: "upgradeFileNote"
                width: parent.width
                visible: text.length > 0
                text: box.upgrade.running ? ""
                    : box.empty ? qsTr("Attach a *.patch file, or drop one here.")
                    : box.refused ? box.file.problem : box.file.size
                font: Theme.captionFont
                color: box.refused ? Theme.errorColor : Theme.quietTextColor
                wrapMode: Text.Wrap
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            PlainText {
                objectName: "upgradeComponents"
                width: parent.width
                visible: text.length > 0
                text: box.upgrade.running ? "" : box.file.components.join("  ·  ")
                font: Theme.captionFont
                color: Theme.quietTextColor
                wrapMode: Text.Wrap
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
        }

        DefaultButton {
            objectName: "attachFile"
            focus: true
            enabled: !box.upgrade.running
            text: qsTr("Attach File")
            hint: enabled ? qsTr("Choose an upgrade package (*.patch), or drop one here")
                          : qsTr("Another file can be chosen once the upgrade has ended")
            onClicked: dialog.open()
        }
    }

    Platform.FileDialog {
        id: dialog

        title: qsTr("Choose an upgrade package")
        nameFilters: [qsTr("Upgrade packages (*.patch)"), qsTr("All files (*)")]
        onAccepted: box.upgrade.choose([file])
    }
}
