import QtQuick 2.15
import "../controls"

// What this program is, and which version of it runs. `details` adds lines such as the model in use.
DialogFrame {
    id: about

    property string applicationName: Qt.application.displayName
    property string version: Qt.application.version
    property var details: []

    objectName: "aboutWindow"
    title: qsTr("About %1").arg(applicationName)
    message: qsTr("%1 connects to one lidar at a time, shows and changes its settings, sends it "
                  + "commands and upgrades its firmware.").arg(applicationName)
    advice: qsTr("Name the version below when you ask for help.")
    acceptText: qsTr("Close")
    iconSource: "../icons/info.svg"

    extra: Repeater {
        model: [qsTr("Version %1").arg(about.version)].concat(about.details)

        PlainText {
            width: parent.width
            text: modelData
            wrapMode: Text.Wrap
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
}
