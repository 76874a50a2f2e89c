import QtQuick 2.15
import Tevron 1.0
import "../controls"
import "../theme"

// The calibration of a Lumo, saved to a file.
LumoSection {
    id: section

    // The path of the folder that the file goes to.
    signal saveWanted(string folder)

    // After a saving that may have shown that the folder has vanished.
    function lookAtFolder() {
        watch.LookAtFolder();
    }

    title: qsTr("Calibration")

    DownloadWatch {
        id: watch
    }

    LogsFolder {
        width: parent.width
        watch: watch
    }
    DefaultButton {
        objectName: "calibrationSave"
        text: qsTr("Save")
        enabled: watch.folderProblem.length === 0
        hint: qsTr("Read the calibration from the lidar and save it to the folder")
        onClicked: {
            if (watch.LookAtFolder())
                section.saveWanted(watch.folder);
        }
    }
}
