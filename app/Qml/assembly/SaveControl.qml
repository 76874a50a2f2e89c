import QtQuick 2.15

// What Save does with the edits of a page.
//
// manager   the object that checks, writes and reads pages
// tab       the page
// pageRows  its rows, a PageRows
// fovEdits  its edited angles, a FovEdits
// refused(reason)            there is nothing to write, or nowhere to write it
// confirmationWanted(names)  values are out of their range: answered by write() or nothing
// reread()                   the page was read again after a writing
Item {
    id: saving

    property var manager
    property int tab: 0
    property var pageRows
    property var fovEdits

    signal refused(string reason)
    signal confirmationWanted(var names)
    signal reread()

    function save() {
        if (!manager.IsConnected) {
            refused(qsTr("Please connect to lidar first"));
            return;
        }
        if (manager.getSetMapSize() <= 0) {
            refused(qsTr("Nothing to be saved"));
            return;
        }
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
        manager.Run(tab);
        pageRows.TakeAll();
        const untaken = pageRows.Edits();
        const angles = fovEdits.angles;
        manager.GetLidarModuleInfo(tab);
        untaken.forEach(edit => manager.SetText(1, edit.level1, edit.level2, edit.level3, edit.text));
        fovEdits.restore(angles);
        reread();
    }

    Connections {
        id: outOfRange

        property var names: []

        target: saving.manager
        enabled: false
        function onSomeVarOutOfRange(var_name) { outOfRange.names.push(var_name); }
    }
}
