import QtQuick 2.15
import "../controls"
import "../theme"

// The two buttons below settings that are read and written together.
//
// what          names the settings in the tooltips
// prefix        begins the names by which tests find the buttons
// complete      everything has been filled in, so that it can be written
Row {
    id: buttons

    property string what: ""
    property string prefix: ""
    property bool complete: false

    signal readWanted()
    signal setWanted()

    spacing: Theme.gap

    DefaultButton {
        objectName: buttons.prefix + "Read"
        text: qsTr("Read")
        hint: qsTr("Read %1 from the lidar").arg(buttons.what)
        onClicked: buttons.readWanted()
    }
    DefaultButton {
        objectName: buttons.prefix + "Set"
        text: qsTr("Set")
        enabled: buttons.complete
        hint: qsTr("Write %1 to the lidar").arg(buttons.what)
        onClicked: buttons.setWanted()
    }
}
