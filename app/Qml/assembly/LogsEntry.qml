import QtQuick 2.15
import QtQuick.Layouts 1.15
import "../controls"
import "../theme"

// One thing that can be downloaded: its name, what became of it, and the button.
//
// name        as the lidar's table calls it
// note        what happened last, a few words
// busy        it is being fetched, and `activity` says how far
// progress    0 to 1; negative: not known
// cancellable the button ends the download while it runs
Panel {
    id: entry

    property string name: ""
    property string description: ""
    property string note: ""
    property string activity: ""
    property real progress: -1
    property bool busy: false
    property bool possible: true
    property bool cancellable: false
    property bool cancelling: false

    signal wanted()
    signal unwanted()

    padding: Theme.gap
    implicitHeight: Math.max(line.implicitHeight, Theme.controlHeight) + 2 * padding

    content: RowLayout {
        id: line

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: Theme.gap
        spacing: Theme.gapWide

        Column {
            Layout.fillWidth: true

            PlainText {
                width: parent.width
                text: entry.name
                elide: Text.ElideRight
            }
            PlainText {
                width: parent.width
                visible: text.length > 0
                text: entry.description
                font: Theme.captionFont
                color: Theme.quietTextColor
                elide: Text.ElideRight
            }
        }
        LoadingWidget {
            objectName: "logsProgress"
            running: entry.busy
            text: entry.activity
            progress: entry.progress
        }
        PlainText {
            objectName: "logsNote_" + entry.name
            visible: !entry.busy && text.length > 0
            text: entry.note
            color: Theme.quietTextColor
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        DefaultButton {
            objectName: "logsDownload_" + entry.name
            visible: !(entry.busy && entry.cancellable)
            enabled: entry.possible && !entry.busy
            text: qsTr("Download")
            hint: qsTr("Save %1 to the folder").arg(entry.name)
            onClicked: entry.wanted()
        }
        DefaultButton {
            objectName: "logsCancel"
            visible: entry.busy && entry.cancellable
            enabled: !entry.cancelling
            text: entry.cancelling ? qsTr("Ending…") : qsTr("Cancel")
            hint: qsTr("End the download; what has been saved stays")
            onClicked: entry.unwanted()
        }
    }
}
