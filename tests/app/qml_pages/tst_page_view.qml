import QtQuick 2.15
import QtTest 1.15
import TevronTest 1.0
import "qrc:/Qml/assembly"

// One page with a row of every kind, on a manager that only takes notes.
TestCase {
    id: test

    property var page: null
    property var manager: null
    property var refusals: []
    property var questions: []

    name: "PageView"
    when: windowShown
    width: 900
    height: 700
    visible: true

    Component {
        id: pageComponent

        PageView {
            anchors.fill: parent
            onRefused: test.refusals.push(reason)
            onConfirmationWanted: test.questions.push(names)
        }
    }
    Component { id: managerComponent; FakeManager {} }

    function leaf(type, value, more) {
        return Object.assign({
            "var_type": type, "current_val": value, "permission": 1, "switch_index": "1",
            "options": ["Strongest", "Last", "Dual"], "option_index": 1, "option_num": 3,
            "set_cmd": "0x12", "edited": false, "hint": "Allowed: 0 to 100", "range_min": 0,
            "range_max": 100, "page_description": "About the page"
        }, more);
    }

    function init() {
        refusals = [];
        questions = [];
        manager = managerComponent.createObject(test);
        manager.myMap = [[[leaf("uint16", "10"), leaf("uint16", "20"),
                           leaf("string", "fixed", { "permission": 0 }), leaf("uint16", "3"),
                           leaf("uint8", "1"), leaf("uint8", "1"), leaf("uint8", "7"),
                           leaf("raw", "", { "set_cmd": "0x22" })]]];
        manager.level2List = [[["Timed", 1, 0, 0, 0], ["Plain", 1, 0, 0, 1], ["Fixed", 0, 0, 0, 2],
                               ["Switched", 2, 0, 0, 3], ["Choice", 3, 0, 0, 4],
                               ["Tall", 5, 0, 0, 5], ["Unknown", 6, 0, 0, 6],
                               ["Angles", 1, 0, 0, 7]]];
        manager["FovList"] = ["0", "1", "2", "3", "4", "5", "6", "7", "8", "9"];
        page = createTemporaryObject(pageComponent, test, { "manager": manager });
        tryVerify(() => editor("fov_9") !== null);
        manager.calls = [];
    }

    function editor(name) { return findChild(page, name); }

    function type(name, text) {
        editor(name).forceActiveFocus();
        editor(name).selectAll();
        for (const letter of text)
            keyClick(letter);
    }

    function callsOf(name) { return manager.calls.filter(call => call[0] === name); }

    function test_every_kind_has_its_editor() {
        compare(editor("field_0_0_0").text, "10");
        compare(editor("field_0_0_2").enabled, false);
        compare(editor("switch_0_0_3").checked, true);
        compare(editor("choice_0_0_4").currentText, "Last");
        compare(editor("choice_0_0_5").currentText, "Last");
        compare(editor("field_0_0_6").text, "7");
        compare(editor("fov_3").text, "3");
        compare(page.rows.length, 8);
    }

    function test_a_row_of_kind_5_is_taller() {
        const heights = page.liveRows().map(row => [row.caption, row.height]);
        compare(heights.find(entry => entry[0] === "Choice")[1], 35);
        compare(heights.find(entry => entry[0] === "Tall")[1], 80);
    }

    function test_edits_are_handed_over_on_enter() {
        type("field_0_0_1", "42");
        compare(manager.calls.length, 0);
        keyClick(Qt.Key_Return);
        compare(manager.calls, [["SetText", 1, 0, 0, 1, "42"]]);
        verify(editor("field_0_0_1").pending);
        verify(page.hasEdits);
        keyClick(Qt.Key_Tab);
        compare(manager.calls.length, 1);
    }

    function test_a_choice_is_handed_over_by_its_index() {
        editor("choice_0_0_4").forceActiveFocus();
        keyClick(Qt.Key_Down);
        compare(manager.calls, [["SetText", 3, 0, 0, 4, "2"]]);
        compare(editor("choice_0_0_4").currentText, "Dual");
    }

    function test_a_switch_needs_the_lidar_only_to_go_on_data() {
        return [{ "tag": "connected", "connected": true,
                  "off": [["SetText", 2, 0, 0, 3, "0"], ["SetText", 1, 0, 0, 3, "0"]],
                  "on": [["SetText", 2, 0, 0, 3, "1"]] },
                { "tag": "disconnected", "connected": false,
                  "off": [["SetText", 1, 0, 0, 3, "0"]], "on": [] }];
    }

    function test_a_switch_needs_the_lidar_only_to_go_on(data) {
        manager["IsConnected"] = data.connected;
        mouseClick(editor("switch_0_0_3"));
        compare(manager.calls, data.off);
        compare(editor("field_0_0_3").text, "0");
        manager.put(0, 0, 3, "switch_index", "0");
        manager.myMapChanged();
        manager.calls = [];
        mouseClick(editor("switch_0_0_3"));
        compare(manager.calls, data.on);
        compare(editor("switch_0_0_3").checked, data.connected);
    }

    function test_angles_are_handed_over_by_their_index() {
        type("fov_7", "359.5");
        keyClick(Qt.Key_Tab);
        compare(manager.calls, [["SetMultiFovConfig", 7, "359.5"]]);
        verify(page.hasEdits);
        type("fov_8", "400");
        verify(editor("fov_8").problem !== "");
    }

    function test_typing_is_judged_while_it_goes_on_data() {
        return [{ "tag": "in range", "text": "100", "good": true },
                { "tag": "above", "text": "101", "good": false },
                { "tag": "no number", "text": "x", "good": false },
                { "tag": "empty", "text": "", "good": false }];
    }

    function test_typing_is_judged_while_it_goes_on(data) {
        type("field_0_0_1", "5");
        keyClick(Qt.Key_Backspace);
        for (const letter of data.text)
            keyClick(letter);
        compare(editor("field_0_0_1").problem === "", data.good);
    }

    function test_the_periodic_refresh_renews_timed_fields_only() {
        manager.put(0, 0, 0, "current_val", "11");
        manager.put(0, 0, 1, "current_val", "21");
        manager.myTimerMapChanged();
        compare(editor("field_0_0_0").text, "11");
        compare(editor("field_0_0_1").text, "20");
        manager.myMapChanged();
        compare(editor("field_0_0_1").text, "21");
    }

    function test_a_refresh_keeps_rows_and_typing() {
        const field = editor("field_0_0_0");
        type("field_0_0_0", "4");
        manager.put(0, 0, 0, "current_val", "12");
        manager.myTimerMapChanged();
        manager.myMapChanged();
        compare(editor("field_0_0_0"), field);
        compare(field.text, "4");
        verify(field.activeFocus);
        keyClick(Qt.Key_Escape);
        compare(field.text, "12");
        compare(callsOf("SetText").length, 0);
    }

    function test_cancel_reads_the_page_again() {
        type("field_0_0_1", "42");
        mouseClick(editor("cancelButton"));
        compare(callsOf("GetLidarModuleInfo"), [["GetLidarModuleInfo", 0]]);
        compare(callsOf("Run").length, 0);
    }

    function test_save_has_its_guards() {
        manager["IsConnected"] = false;
        mouseClick(editor("saveButton"));
        manager["IsConnected"] = true;
        mouseClick(editor("saveButton"));
        compare(refusals, ["Please connect to lidar first", "Nothing to be saved"]);
        compare(manager.calls, []);
    }

    function test_save_takes_what_is_still_being_typed() {
        type("field_0_0_1", "42");
        keyClick(Qt.Key_S, Qt.ControlModifier);
        compare(manager.calls.map(call => call[0]),
                ["SetText", "CheckModuleVarsWithinRange", "Run", "GetLidarModuleInfo"]);
    }

    function test_values_out_of_range_are_written_only_after_a_question() {
        manager.outOfRange = ["Plain", "Timed"];
        type("field_0_0_1", "999");
        mouseClick(editor("saveButton"));
        compare(questions, [["Plain", "Timed"]]);
        compare(callsOf("Run").length, 0);
        page.write();
        compare(callsOf("Run"), [["Run", 0]]);
        compare(callsOf("GetLidarModuleInfo").length, 1);
    }

    function test_an_attachment_replaces_save_and_takes_packages_only() {
        manager.level2List = [[["Firmware", 4, 0, 0, 6]]];
        tryVerify(() => editor("attachFile") !== null);
        compare(editor("saveButton").visible, false);
        const attachment = page.liveRows()[0].editor;
        attachment.attach("file:///tmp/update.zip");
        attachment.attach("file:///tmp/update.patch");
        compare(manager.calls,
                [["setErrorMsg", "Upgrade package rejected: it has to be a .patch file"],
                 ["UpgradeLidar", "file:///tmp/update.patch", 0, 0, 6]]);
    }
}
