import QtQuick 2.15
import QtQuick.Layouts 1.15
import Tevron 1.0
import "../controls"
import "../theme"

// The folder that files are saved to: typed or chosen, and opened in the system's own window.
//
// watch   the DownloadWatch that keeps it
ColumnLayout {
    id: chooser

    property DownloadWatch watch

    spacing: Theme.gapTiny

    // A folder that has vanished may come back, on a stick that is plugged in again.
    Timer {
        interval: 1000
        repeat: true
        running: chooser.visible && chooser.watch.folderProblem.length > 0
        onTriggered: chooser.watch.LookAtFolder()
    }

    PlainText {
        text: qsTr("Folder")
        font: Theme.captionFont
        color: Theme.quietTextColor
    }

    RowLayout {
        spacing: Theme.gap

        DefaultTextField {
            objectName: "logsFolder"
            Layout.fillWidth: true
            label: qsTr("Folder that the files are saved to")
            hint: label
            value: chooser.watch.folder
            problem: chooser.watch.folderProblem
            onCommitted: {
                chooser.watch.ChooseFolder(text);
                revert();
            }
        }
        DefaultButton {
            objectName: "logsChooseFolder"
            text: qsTr("Choose…")
            hint: qsTr("Choose the folder that the files are saved to")
            onClicked: {
                dialog.folder = chooser.watch.folderUrl;
                dialog.open();
            }
        }
        DefaultButton {
            objectName: "logsOpenFolder"
            text: qsTr("Open")
            hint: qsTr("Show the folder in the system's file window")
            enabled: chooser.watch.folderProblem.length === 0
            onClicked: {
                if (chooser.watch.LookAtFolder())
                    Qt.openUrlExternally(chooser.watch.folderUrl);
            }
        }
    }

    PlainText {
        objectName: "logsFolderProblem"
        Layout.fillWidth: true
        visible: text.length > 0
        text: chooser.watch.folderProblem
        font: Theme.captionFont
        color: Theme.errorColor
        wrapMode: Text.Wrap
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }

    PathDialog {
        id: dialog

        title: qsTr("Choose the folder that the files are saved to")
        onChosen: chooser.watch.ChooseFolder(url.toString())
    }
}
