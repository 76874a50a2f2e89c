import QtQuick 2.15
import "../controls"

// The button that sets what was chosen in a line.
DefaultButton {
    property var line

    objectName: line.name + "Set"
    text: qsTr("Set")
    enabled: line.chosen >= 0
    emphasised: line.edited
    hint: qsTr("Write the choice to the lidar")
}
