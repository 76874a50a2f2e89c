import QtQuick 2.15
import Qt.labs.platform 1.1 as Platform
import "../controls"
import "../theme"

// The firmware attachment of a page: a file is chosen or dropped, and handed to the upgrade. Only
// packages are taken, by the end of their name.
FocusScope {
    id: editor

    property var row

    function attach(url) {
        if (!url.toString().endsWith(".patch")) {
            console.log("Rejected, need a *.patch file");
            row.manager.setErrorMsg("Upgrade package rejected: it has to be a .patch file");
            return;
        }
        row.manager.UpgradeLidar(url, row.level1, row.level2, row.level3);
    }

    implicitHeight: Theme.controlHeight

    DefaultButton {
        id: button

        objectName: "attachFile"
        anchors.verticalCenter: parent.verticalCenter
        focus: true
        text: qsTr("Attach File")
        hint: qsTr("Choose an upgrade package (*.patch), or drop one here")
        onClicked: dialog.open()
    }

    PlainText {
        anchors.left: button.right
        anchors.leftMargin: Theme.gapWide
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        text: drop.containsDrag ? qsTr("Drop the package to start the upgrade")
                                : qsTr("or drop an upgrade package (*.patch) here")
        font: Theme.captionFont
        color: drop.containsDrag ? Theme.accentColor : Theme.quietTextColor
        elide: Text.ElideRight
    }

    DropArea {
        id: drop

        anchors.fill: parent
        onDropped: if (drop.hasUrls) editor.attach(drop.urls[0])
    }

    Platform.FileDialog {
        id: dialog

        title: qsTr("Choose an upgrade package")
        nameFilters: [qsTr("Upgrade packages (*.patch)"), qsTr("All files (*)")]
        onAccepted: editor.attach(file)
    }
}
