import QtQuick 2.15
import QtQuick.Layouts 1.15
import "../theme"

// What stands at the end of the connection bar: settings files, the lidar as a whole, the program.
//
// network    the lidar is reached over the network
// applying   the settings of a file are being written to it
RowLayout {
    id: tools

    property bool network: true
    property bool applying: false

    signal settingsWanted(string what)
    signal restartWanted()
    signal resetWanted()
    signal aboutWanted()

    spacing: Theme.gap

    SettingsMenu {
        objectName: "settingsButton"
        locked: tools.applying
        onWanted: tools.settingsWanted(what)
    }

    GearMenu {
        objectName: "gearButton"
        visible: tools.network
        enabled: !tools.applying
        onRestartWanted: tools.restartWanted()
        onResetWanted: tools.resetWanted()
    }

    // Keeps the gear's place, so that Connect stands where it always stands.
    Item {
        visible: !tools.network
        implicitWidth: Theme.controlHeight
    }

    DefaultToolButton {
        objectName: "aboutButton"
        label: qsTr("About this program")
        icon.source: "../icons/info.svg"
        onClicked: tools.aboutWanted()
    }
}
