import QtQuick 2.15
import Tevron 1.0

// What the entries of the settings menu do: the files are asked for, and what they bring is shown in
// the place of the page.
//
// watch    what is read, written and shown, a SettingsWatch
// view     what stands in the place of the page: "comparison", "snapshots" or nothing
Item {
    id: control

    property var manager
    property alias watch: watch
    property string view: ""
    property url firstFile

    // What is ticked is to be written: answered by keepAndGo() or nothing.
    signal applyAsked()
    // There is no snapshot, for the reason: answered by go() or nothing.
    signal snapshotMissed(string purpose, string problem)

    readonly property var doings: ({
        "save": () => save(),
        "compare": () => choose("compare", qsTr("Choose the file to compare the lidar with")),
        "files": () => choose("first", qsTr("Choose the first of the two files")),
        "apply": () => choose("apply", qsTr("Choose the file to apply to the lidar")),
        "snapshots": () => showSnapshots(),
        "bundle": lines => bundle.list(lines)
    })
    readonly property var takings: ({
        "compare": file => watch.Compare(file, false),
        "apply": file => watch.Compare(file, true),
        "first": file => {
            firstFile = file;
            choose("second", qsTr("Choose the file to compare it with"));
        },
        "second": file => watch.CompareFiles(firstFile, file)
    })

    // Does what an entry of the menu stands for; `lines` are those of the log.
    function start(what, lines) {
        doings[what](lines);
    }

    // Keeps a snapshot before it does what `purpose` says: "apply" or "reset".
    function keepAndGo(purpose) {
        watch.TakeSnapshot(purpose);
    }

    function go(purpose) {
        if (purpose === "apply")
            watch.Apply();
        else
            LongCalls.Run(() => manager.Reset());
    }

    // Gives the page its place back.
    function close() {
        view = "";
    }

    function save() {
        if (!watch.MayUseLidar())
            return;
        saveDialog.saveName = watch.SuggestedName();
        saveDialog.open();
    }

    function choose(purpose, title) {
        if ((purpose === "compare" || purpose === "apply") && !watch.MayUseLidar())
            return;
        openDialog.purpose = purpose;
        openDialog.title = title;
        openDialog.open();
    }

    function showSnapshots() {
        view = "snapshots";
    }

    SettingsWatch {
        id: watch

        objectName: "settingsWatch"
        manager: control.manager
        onComparedAnew: control.view = "comparison"
        onSnapshotTaken: problem === "" ? control.go(reason) : control.snapshotMissed(reason, problem)
        onChanged: if (!compared && control.view === "comparison") control.view = ""
    }

    BundleControl {
        id: bundle

        manager: control.manager
    }

    PathDialog {
        id: saveDialog

        objectName: "settingsSaveDialog"
        title: qsTr("Save the lidar's settings")
        nameFilters: [qsTr("Settings (*.tevron.json)")]
        onChosen: watch.Save(url)
    }

    PathDialog {
        id: openDialog

        property string purpose: ""

        objectName: "settingsOpenDialog"
        nameFilters: [qsTr("Settings (*.tevron.json)"), qsTr("All files (*)")]
        onChosen: Qt.callLater(control.takings[purpose], url)
    }
}
