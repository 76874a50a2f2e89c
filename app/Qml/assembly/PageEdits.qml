import QtQuick 2.15
import QtQuick.Window 2.15

// What the user changed on a page and has not saved: values, angles, and the text that is still being
// typed.
//
// manager   the object that reads and writes pages
// tab       the page
// rows      its rows, a PageRows
// current   the row that had the keyboard last, or null
// listened  the page has the keyboard
// The signals are those of SaveControl.
Item {
    id: edits

    property var manager
    property int tab: 0
    property var rows
    property var current: null
    property bool listened: false
    readonly property alias angles: fov
    readonly property alias saving: saveControl.writing
    readonly property bool any: pendingCommands > 0 || typing || fov.faultCount > 0
    property int pendingCommands: 0
    // The page itself ends its edits now; at other times they outlive a reading.
    property bool releasing: false
    // A field of the page holds text that was not confirmed yet.
    readonly property bool typing: {
        const item = Window.activeFocusItem;
        return listened && item !== null && item.typing === true && item.text !== item.value;
    }
    // Text that is being typed in a row that has no other edit counts as one.
    readonly property bool typingAnew: typing && current !== null && !current.pending
    readonly property bool typingFault: typingAnew && current.isFaulty
    readonly property int faultCount: rows.faultCount + fov.faultCount + (typingFault ? 1 : 0)
    readonly property int editCount: rows.editCount - rows.faultCount + fov.editCount
                                     + (typingAnew && !typingFault ? 1 : 0)

    signal refused(string reason)
    signal confirmationWanted(var names)
    signal faultFound()
    signal done(var outcome)

    function countPending() {
        pendingCommands = manager.getSetMapSize();
    }

    // Brings the rows up to date that show something else. What was typed stays, whoever read the page.
    function takeRows() {
        const kept = releasing || saving ? [] : rows.Edits();
        rows.TakeAll();
        saveControl.giveBack(kept);
        countPending();
    }

    // Does `reading`, after which no edit is left.
    function release(reading) {
        saveControl.forget();
        releasing = true;
        reading();
        fov.clear();
        releasing = false;
    }

    // Hands over what is typed in the field that still has the keyboard, and saves. For `next` see
    // SaveControl.
    function save(next) {
        if (current !== null)
            current.commit();
        saveControl.save(next);
    }

    function write(next) {
        saveControl.write(next);
    }

    FovEdits {
        id: fov

        manager: edits.manager
        releasing: edits.releasing || edits.saving
    }

    SaveControl {
        id: saveControl

        manager: edits.manager
        tab: edits.tab
        pageRows: edits.rows
        fovEdits: fov
        onRefused: edits.refused(reason)
        onConfirmationWanted: edits.confirmationWanted(names)
        onFaultFound: edits.faultFound()
        onWritten: edits.countPending()
        onDone: edits.done(outcome)
    }
}
