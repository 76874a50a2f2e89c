import QtQuick 2.15
import Tevron 1.0

// One file for whoever helps: what it would hold is shown, and written where the user wants it.
//
// list(lines)  begins; `lines` are those of the log
Item {
    id: control

    property var manager

    function list(lines) {
        bundle.List(lines);
    }

    function choosePlace() {
        saveDialog.saveName = bundle.SuggestedName();
        saveDialog.open();
    }

    SupportBundle {
        id: bundle

        manager: control.manager
        onListed: box.open()
    }

    BundleBox {
        id: box

        entries: bundle.entries
        onAccepted: control.choosePlace()
    }

    PathDialog {
        id: saveDialog

        objectName: "bundleSaveDialog"
        title: qsTr("Save the support bundle")
        nameFilters: [qsTr("Archives (*.zip)")]
        onChosen: bundle.Save(url)
    }
}
