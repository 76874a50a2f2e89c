import QtQuick 2.15
import "SaveOutcome.js" as SaveOutcome

// What Save does with the edits of a page.
//
// manager   the object that checks, writes and reads pages
// tab       the page
// pageRows  its rows, a PageRows
// fovEdits  its edited angles, a FovEdits
// writing   a Save is on its way to the lidar
// refused(reason)            there is nothing to write, or nowhere to write it
// faultFound()               a field holds what no conversion takes, and nothing was sent
// confirmationWanted(names)  values are out of their range: answered by write() or nothing
// done(outcome)              the page was read again after a writing: what came of it, see SaveOutcome
Item {
    id: saving

    property var manager
    property int tab: 0
    property var pageRows
    property var fovEdits
    property bool writing: false

    signal refused(string reason)
    signal faultFound()
    signal confirmationWanted(var names)
    signal done(var outcome)

    function save() {
        if (!manager.IsConnected)
            refused(qsTr("Please connect to lidar first"));
        else if (pageRows.faultCount + fovEdits.faultCount > 0)
            faultFound();
        else if (manager.getSetMapSize() <= 0)
            refused(qsTr("Nothing to be saved"));
        else
            check();
    }

    function check() {
        outOfRange.names = [];
        outOfRange.enabled = true;
        const inRange = manager.CheckModuleVarsWithinRange(tab);
        outOfRange.enabled = false;
        if (inRange)
            write();
        else
            confirmationWanted(outOfRange.names);
    }

    // What the lidar did not take is handed over again after the reading, which shows what the lidar
    // holds and ends all edits.
    function write() {
        writing = true;
        const edits = pageRows.Edits();
        const wanted = fovEdits.angles;
        manager.Run(tab);
        pageRows.TakeAll();
        const untaken = pageRows.Edits();
        const angles = fovEdits.angles;
        manager.GetLidarModuleInfo(tab);
        pageRows.TakeAll();
        const rows = edits.map(edit => outcomeOf(edit, !untaken.some(it => isSame(it, edit))));
        handOver(untaken);
        fovEdits.restore(angles);
        writing = false;
        const now = Qt.formatTime(new Date(), "hh:mm:ss");
        done(SaveOutcome.of(rows.concat(fovOutcome(wanted)), now));
    }

    function isSame(one, other) {
        return one.level1 === other.level1 && one.level2 === other.level2 && one.level3 === other.level3;
    }

    function outcomeOf(edit, taken) {
        const leaf = pageRows.LeafAt(edit.level1, edit.level2, edit.level3);
        return { "name": leaf.var_name, "place": edit.level1 + "_" + edit.level2 + "_" + edit.level3,
                 "leaf": leaf, "taken": taken };
    }

    // The edited angles stand for the variable that holds all of them.
    function fovOutcome(angles) {
        if (Object.keys(angles).length === 0)
            return [];
        const leaf = pageRows.FovLeaf();
        return [{ "name": leaf.var_name, "place": "", "leaf": leaf, "taken": fovEdits.editCount === 0 }];
    }

    // The edits that the manager does not hold any more.
    function giveBack(edits) {
        const lost = edits.filter(it => !pageRows.LeafAt(it.level1, it.level2, it.level3).edited);
        handOver(lost);
        if (lost.length > 0)
            pageRows.TakeAll();
    }

    function handOver(edits) {
        edits.forEach(it => manager.SetText(1, it.level1, it.level2, it.level3, it.text));
    }

    Connections {
        id: outOfRange

        property var names: []

        target: saving.manager
        enabled: false
        function onSomeVarOutOfRange(var_name) { outOfRange.names.push(var_name); }
    }
}
