import QtQuick 2.15
import Tevron 1.0
import "../controls"
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
// written()                  the lidar took what it took; the rest goes on being edited
// done(outcome)              the page was read again after a writing: what came of it, see SaveOutcome
//
// Writing and reading again may each take a while, and the window answers in between: whatever
// happens to the page then happens to a page like any other.
Item {
    id: saving

    property var manager
    property int tab: 0
    property var pageRows
    property var fovEdits
    property bool writing: false
    // What was written and has to be read again: "rows", their edits with "taken", the "angles" and
    // whether they were taken, and what is to follow.
    property var unread: null

    signal refused(string reason)
    signal faultFound()
    signal confirmationWanted(var names)
    signal written()
    signal done(var outcome)

    // `next`, where there is one, follows the outcome; not when nothing was written.
    function save(next) {
        if (!manager.IsConnected)
            refused(qsTr("Please connect to lidar first"));
        else if (pageRows.faultCount + fovEdits.faultCount > 0)
            faultFound();
        else if (manager.getSetMapSize() <= 0)
            refused(qsTr("Nothing to be saved"));
        else
            check(next);
    }

    function check(next) {
        outOfRange.names = [];
        outOfRange.enabled = true;
        const inRange = manager.CheckModuleVarsWithinRange(tab);
        outOfRange.enabled = false;
        if (inRange)
            write(next);
        else
            confirmationWanted(outOfRange.names);
    }

    // What the lidar did not take is handed over again, and so are edits like any others.
    function write(next) {
        writing = true;
        const edits = pageRows.Edits();
        const wanted = fovEdits.angles;
        LongCalls.Run(() => manager.Run(tab));
        pageRows.TakeAll();
        const untaken = pageRows.Edits();
        handOver(untaken);
        fovEdits.handOver();
        writing = false;
        const rows = edits.map(edit => ({ "edit": edit, "taken": !untaken.some(it => isSame(it, edit)) }));
        const before = unread || { "rows": [], "angles": {}, "next": undefined };
        unread = { "rows": before.rows.filter(old => !edits.some(it => isSame(it, old.edit))).concat(rows),
                   "angles": Object.assign({}, before.angles, wanted),
                   "anglesTaken": fovEdits.editCount === 0, "next": next || before.next };
        turns.clear();
        turns.add(readAgain);
        written();
    }

    function readAgain() {
        LongCalls.Run(() => manager.GetLidarModuleInfo(tab));
        pageRows.TakeAll();
        const was = unread;
        forget();
        const rows = was.rows.map(row => outcomeOf(row.edit, row.taken));
        const now = Qt.formatTime(new Date(), "hh:mm:ss");
        done(SaveOutcome.of(rows.concat(fovOutcome(was.angles, was.anglesTaken)), now));
        if (was.next !== undefined)
            turns.add(was.next);
    }

    // The page goes, or its edits do: nobody waits for the outcome any more.
    function forget() {
        unread = null;
        turns.clear();
    }

    onTabChanged: forget()

    function isSame(one, other) {
        return one.level1 === other.level1 && one.level2 === other.level2 && one.level3 === other.level3;
    }

    function outcomeOf(edit, taken) {
        const leaf = pageRows.LeafAt(edit.level1, edit.level2, edit.level3);
        return { "name": leaf.var_name, "place": edit.level1 + "_" + edit.level2 + "_" + edit.level3,
                 "leaf": leaf, "taken": taken };
    }

    // The edited angles stand for the variable that holds all of them.
    function fovOutcome(angles, taken) {
        if (Object.keys(angles).length === 0)
            return [];
        const leaf = pageRows.FovLeaf();
        return [{ "name": leaf.var_name, "place": "", "leaf": leaf, "taken": taken }];
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

    Turns { id: turns }

    Connections {
        target: saving.manager
        function onLidarModelChanged() { saving.forget(); }
    }

    Connections {
        id: outOfRange

        property var names: []

        target: saving.manager
        enabled: false
        function onSomeVarOutOfRange(var_name) { outOfRange.names.push(var_name); }
    }
}
