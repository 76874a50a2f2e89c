import QtQuick 2.15
import "../controls"
import "../theme"

// Save and Cancel, what there is to save, and beside it what the last Save brought, which passes by
// itself.
//
// editCount, faultCount  values to be saved, and those that have to be corrected first
// tell(text, isGood)     what a Save brought
FocusScope {
    id: bar

    property int editCount: 0
    property int faultCount: 0
    readonly property bool hasEdits: editCount + faultCount > 0
    property string outcome: ""
    property bool isGood: true

    signal saveClicked()
    signal cancelClicked()

    function tell(text, good) {
        outcome = text;
        isGood = good;
        passing.restart();
    }

    implicitHeight: Theme.controlHeight + 2 * Theme.gap

    Timer {
        id: passing

        interval: Theme.outcomeMs
        onTriggered: bar.outcome = ""
    }

    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        height: Theme.hairline
        color: Theme.outlineColor
    }

    PlainText {
        id: counts

        objectName: "saveState"
        anchors.left: parent.left
        anchors.leftMargin: Theme.gapWide
        anchors.verticalCenter: parent.verticalCenter
        text: {
            const parts = [];
            if (bar.editCount > 0)
                parts.push(bar.editCount === 1 ? qsTr("1 edit") : qsTr("%1 edits").arg(bar.editCount));
            if (bar.faultCount > 0)
                parts.push(bar.faultCount === 1 ? qsTr("1 field to correct")
                                                : qsTr("%1 fields to correct").arg(bar.faultCount));
            return parts.join(" · ");
        }
        color: Theme.pendingColor
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
    PlainText {
        objectName: "saveOutcome"
        anchors.left: counts.right
        anchors.leftMargin: bar.hasEdits ? Theme.gapWide : 0
        anchors.right: buttons.left
        anchors.rightMargin: Theme.gapWide
        anchors.verticalCenter: parent.verticalCenter
        text: bar.outcome
        color: bar.isGood ? Theme.successColor : Theme.pendingColor
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
