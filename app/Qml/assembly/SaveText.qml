import QtQuick 2.15
import Qt.labs.platform 1.1 as Platform
import Tevron 1.0

// Saves a text to a file that the user chooses.
//
// save(title, name, text)   asks where; `name` is what the file is called unless the user changes it
// saved(path)               the whole text is in that file
// refused(reason)           it is not
Item {
    id: saver

    property string text: ""

    signal saved(string path)
    signal refused(string reason)

    function save(title, name, text) {
        saver.text = text;
        dialog.title = title;
        dialog.saveName = name.arg(Qt.formatDateTime(new Date(), "yyyy-MM-dd_hh-mm-ss"));
        dialog.open();
    }

    function write(url) {
        const problem = file.Write(url, text);
        text = "";
        if (problem === "")
            saved(decodeURIComponent(url.toString().replace(/^file:\/\//, "")));
        else
            refused(problem);
    }

    TextFile { id: file }

    PathDialog {
        id: dialog

        folder: Platform.StandardPaths.writableLocation(Platform.StandardPaths.DocumentsLocation)
        nameFilters: [qsTr("Texts (*.txt)"), qsTr("All files (*)")]
        onChosen: saver.write(url)
    }
}
