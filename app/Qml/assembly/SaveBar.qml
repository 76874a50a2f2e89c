import QtQuick 2.15
import "../controls"
import "../theme"

// Save and Cancel, and whether there is anything to save.
FocusScope {
    id: bar

    property bool hasEdits: false

    signal saveClicked()
    signal cancelClicked()

    implicitHeight: Theme.controlHeight + 2 * Theme.gap

    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        height: Theme.hairline
        color: Theme.outlineColor
    }

    PlainText {
        anchors.left: parent.left
        anchors.leftMargin: Theme.gapWide
        anchors.right: buttons.left
        anchors.rightMargin: Theme.gapWide
        anchors.verticalCenter: parent.verticalCenter
        text: bar.hasEdits ? qsTr("This page holds unsaved edits.")
                           : qsTr("No unsaved edits.")
        font: Theme.captionFont
        color: bar.hasEdits ? Theme.pendingColor : Theme.quietTextColor
        elide: Text.ElideRight
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }

    Row {
        id: buttons

        anchors.right: parent.right
        anchors.rightMargin: Theme.gapWide
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.gap

        DefaultButton {
            objectName: "cancelButton"
            text: qsTr("Cancel")
            hint: qsTr("Drop the edits and read the page from the lidar again (Ctrl+R)")
            onClicked: bar.cancelClicked()
        }
        DefaultButton {
            objectName: "saveButton"
            text: qsTr("Save")
            emphasised: bar.hasEdits
            hint: qsTr("Write the edited values to the lidar and read them back (Ctrl+S)")
            onClicked: bar.saveClicked()
        }
    }
}
