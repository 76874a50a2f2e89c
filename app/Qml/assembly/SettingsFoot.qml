import QtQuick 2.15
import QtQuick.Layouts 1.15
import "../controls"
import "../theme"

// The line below a comparison: what is ticked and written, how far that is, and what it brought.
//
// watch          a SettingsWatch
// applyWanted()  what is ticked is to be written
FocusScope {
    id: foot

    property var watch
    readonly property var rows: watch.rows
    readonly property bool offers: watch.withLidar && watch.refusal === ""

    signal applyWanted()

    implicitHeight: Theme.controlHeight + 2 * Theme.gap
    visible: offers || watch.running || watch.outcome !== ""

    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        height: Theme.hairline
        color: Theme.outlineColor
    }

    RowLayout {
        id: line

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.margins: Theme.gapWide
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.gapWide

        PlainText {
            objectName: "settingsOutcome"
            Layout.fillWidth: true
            visible: !foot.watch.running
            text: foot.watch.outcome !== "" ? foot.watch.outcome
                : foot.rows.withNetwork ? qsTr("Network settings are written last; the lidar may be reached elsewhere then.")
                : ""
            color: foot.watch.outcome === "" ? Theme.quietTextColor
                 : foot.watch.failed ? Theme.errorColor : Theme.successColor
            wrapMode: Text.Wrap
            maximumLineCount: 2
            elide: Text.ElideRight
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        LoadingWidget {
            objectName: "settingsProgress"
            Layout.fillWidth: true
            running: foot.watch.running
            text: foot.watch.activity
            progress: foot.watch.fraction
        }
        DefaultSwitch {
            objectName: "settingsNetwork"
            visible: foot.offers && !foot.watch.running && (foot.rows.offersNetwork || foot.rows.withNetwork)
            text: qsTr("Network settings too")
            value: foot.rows.withNetwork
            hint: qsTr("Address and ports of the file: the lidar is reached there once they are in force")
            onSwitched: foot.rows.withNetwork = on
        }
        DefaultButton {
            objectName: "settingsTickAll"
            visible: foot.offers && !foot.watch.running && foot.rows.choiceCount > 0
            text: foot.rows.tickedCount > 0 ? qsTr("Tick none") : qsTr("Tick all")
            hint: qsTr("Of the rows in view")
            onClicked: foot.rows.TickAll(foot.rows.tickedCount === 0)
        }
        DefaultButton {
            objectName: "settingsApply"
            visible: foot.offers && !foot.watch.running
            enabled: foot.rows.tickedCount > 0
            emphasised: enabled
            text: qsTr("Apply %1").arg(foot.rows.tickedCount)
            hint: qsTr("Write the ticked values of the file to the lidar, and read them back")
            onClicked: foot.applyWanted()
        }
        DefaultButton {
            objectName: "settingsCancel"
            visible: foot.watch.running
            enabled: !foot.watch.cancelling
            text: foot.watch.cancelling ? qsTr("Ending…") : qsTr("Cancel")
            hint: qsTr("End it; what was written stays written")
            onClicked: foot.watch.Cancel()
        }
    }
}
