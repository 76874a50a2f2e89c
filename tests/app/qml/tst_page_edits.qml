import QtQuick 2.15
import QtTest 1.15

// What becomes of edits when a page is saved, read, or left alone.
PageCase {
    name: "PageEdits"

    function test_save_has_its_guards_and_takes_what_is_still_being_typed() {
        manager["IsConnected"] = false;
        mouseClick(editor("saveButton"));
        manager["IsConnected"] = true;
        mouseClick(editor("saveButton"));
        compare(refusals, ["Please connect to lidar first", "Nothing to be saved"]);
        compare(manager.calls, []);
        type("field_0_0_1", "42");
        keyClick(Qt.Key_S, Qt.ControlModifier);
        tryVerify(() => manager.calls.length === 4);
        compare(manager.calls.map(call => call[0]),
                ["SetText", "CheckModuleVarsWithinRange", "Run", "GetLidarModuleInfo"]);
    }

    function test_save_goes_to_what_cannot_be_saved_and_sends_nothing() {
        for (const [index, text] of [[1, "12,5"], [0, "11"]]) {
            put(index, "current_val", text);
            put(index, "edited", true);
        }
        manager.myMapChanged();
        editor("saveButton").forceActiveFocus();
        keyClick(Qt.Key_Return);
        verify(editor("field_0_0_1").activeFocus);
        compare(editor("note_0_0_1").text, "A number from 0 to 100, point as decimal sign");
        put(1, "edited", false);
        manager.myMapChanged();
        type("fov_3", "400");
        keyClick(Qt.Key_S, Qt.ControlModifier);
        verify(editor("fov_3").activeFocus);
        verify(page.hasEdits);
        compare(manager.calls.filter(call => call[0] !== "SetText"), []);
        keyClick(Qt.Key_Escape);
        compare(editor("fov_3").text, "3");
    }

    function test_a_reading_that_the_page_did_not_ask_for_takes_no_edit_back() {
        put(1, "current_val", "42");
        put(1, "edited", true);
        manager.myMapChanged();
        type("fov_7", "5");
        keyClick(Qt.Key_Return);
        manager.calls = [];
        put(1, "current_val", "20");
        put(1, "edited", false);
        manager.GetLidarModuleInfo(0);
        compare(manager.calls, [["GetLidarModuleInfo", 0], ["SetMultiFovConfig", 7, "5"],
                                ["SetText", 1, 0, 0, 1, "42"]]);
        verify(editor("fov_7").pending);
        for (const text of ["6", "7"]) {
            type("fov_7", text);
            keyClick(Qt.Key_Return);
            compare(manager["FovList"][7], text);
        }
        verify(!editor("fov_7").pending, "the angle that was there takes the edit back");
    }

    function test_what_the_user_edited_stays_an_edit_until_it_is_written_or_cancelled() {
        const writing = [["Run", 0], ["GetLidarModuleInfo", 0]];
        for (const held of ["", "200"]) {
            manager["heldAngles"] = Array(10).fill(held);
            manager.calls = [];
            page.write();
            tryVerify(() => manager.calls.length > 1);
            compare(manager.calls, writing, "angles that nobody edited are no edits");
        }
        for (const [name, text] of [["field_0_0_1", "42"], ["fov_7", "5"], ["fov_8", "400"]]) {
            type(name, text);
            keyClick(Qt.Key_Return);
        }
        put(1, "current_val", "42");
        put(1, "edited", true);
        manager.calls = [];
        page.write();
        const edits = [["SetText", 1, 0, 0, 1, "42"], ["SetMultiFovConfig", 7, "5"]];
        compare(manager.calls, [writing[0]].concat(edits));
        tryVerify(() => manager.calls.length > 4);
        compare(manager.calls.slice(3), [writing[1], edits[1]]);
        const shown = () => [7, 8].map(i => editor("fov_" + i)).map(it => [it.text, it.pending]);
        compare(shown(), [["5", true], ["400", true]]);
        manager.calls = [];
        mouseClick(editor("cancelButton"));
        compare(manager.calls, [["GetLidarModuleInfo", 0]]);
        compare(shown(), [["200", false], ["200", false]]);
    }

    // The window answers between a Save's writing and its reading.
    function test_what_is_done_while_a_save_is_read_back_counts() {
        const run = ["Run", 0];
        const read = ["GetLidarModuleInfo", 0];
        const edit = ["SetText", 1, 0, 0, 1, "42"];
        page.write();
        put(1, "current_val", "42");
        put(1, "edited", true);
        manager.myMapChanged();
        page.write();
        wait(20);
        compare(manager.calls, [run, run, edit, read], "what was edited meanwhile is an edit");
        manager.calls = [];
        page.write();
        page.cancel();
        wait(20);
        compare(manager.calls, [run, edit, read], "an edit that was dropped has no outcome");
    }
}
