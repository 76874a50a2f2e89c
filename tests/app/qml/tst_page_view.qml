import QtQuick 2.15
import QtQuick.Window 2.15
import QtTest 1.15
import TevronTest 1.0
import "qrc:/Qml/assembly"

// One page with a row of every kind, on a manager that only takes notes.
TestCase {
    id: test

    property var page: null
    property var manager: null
    property var leaves: []
    property var refusals: []

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
        }
    }
    Component { id: managerComponent; FakeManager {} }

    function leaf(type, value, more) {
        return Object.assign({
            "var_type": type, "current_val": value, "permission": 1, "switch_index": "1",
            "options": ["Strongest", "Last", "Dual"], "option_index": 1, "option_num": 3,
            "set_cmd": "0x12", "edited": false, "hint": "0 to 100", "range_min": 0,
            "range_max": 100, "page_description": "About the page"
        }, more);
    }

    function init() {
        refusals = [];
        manager = managerComponent.createObject(test);
        leaves = [leaf("uint16", "10", { "timer_update": true }), leaf("uint16", "20"),
                  leaf("string", "fixed", { "permission": 0 }), leaf("uint16", "3"),
                  leaf("uint8", "1"), leaf("uint8", "1"), leaf("uint8", "7"),
                  leaf("raw", "", { "set_cmd": "0x22" })];
        manager.myMap = [[leaves]];
        manager.level2List = [[["Timed", 1, 0, 0, 0], ["Plain", 1, 0, 0, 1], ["Fixed", 0, 0, 0, 2],
                               ["Switched", 2, 0, 0, 3], ["Choice", 3, 0, 0, 4],
                               ["Tall", 5, 0, 0, 5], ["Unknown", 6, 0, 0, 6],
                               ["Angles", 1, 0, 0, 7]]];
        manager["FovList"] = ["0", "1", "2", "3", "4", "5", "6", "7", "8", "9"];
        manager["heldAngles"] = manager["FovList"];
        page = createTemporaryObject(pageComponent, test, { "manager": manager });
        tryVerify(() => editor("fov_9") !== null);
        manager.calls = [];
    }

    function editor(name) { return findChild(page, name); }

    function put(index, key, value) {
        leaves[index][key] = value;
        manager.myMap = [[leaves]];
    }

    function type(name, text) {
        editor(name).forceActiveFocus();
        editor(name).selectAll();
        for (const letter of text)
            keyClick(letter);
    }

    // The monitor in the room that the smallest window leaves it, and a setting beside it.
    function showMonitor() {
        manager.level2List = [[["Monitor", 7, 0, 0, 0], ["Points Sent", 0, 0, 0, 2],
                               ["Limit", 1, 0, 0, 1]]];
        page.anchors.bottomMargin = test.height - 440;
        tryVerify(() => editor("monitorPlot") !== null);
        manager.Measure(findChild(page, "monitorSource").live);
        tryVerify(() => editor("monitorNow2") !== null);
    }

    function test_every_kind_has_its_editor() {
        compare(editor("field_0_0_0").text, "10");
        compare(editor("field_0_0_2").readOnly, true);
        compare(editor("switch_0_0_3").checked, true);
        compare(editor("choice_0_0_4").currentText, "Last");
        compare(editor("choice_0_0_5").currentText, "Last");
        compare(editor("field_0_0_6").text, "7");
        compare(editor("fov_3").text, "3");
        compare(editor("pageRows").count, 8);
        compare(editor("pageRows").rowAt(5).height, 80);
    }

    function items(below, wanted) {
        return Array.from(below.children).reduce((found, child) => found.concat(items(child, wanted)),
                                                 wanted(below) ? [below] : []);
    }

    function test_no_text_is_cut_off_and_every_control_is_reached_by_tab_data() {
        return [{ tag: "rows", prepare: () => {}, leastControls: 16 },
                { tag: "monitor", prepare: showMonitor, leastControls: 15 },
                { tag: "recording", leastControls: 13,
                  prepare: () => { manager["isMonitorRecording"] = true; showMonitor(); } }];
    }

    function test_no_text_is_cut_off_and_every_control_is_reached_by_tab(data) {
        data.prepare();
        const texts = items(page, item => item.visible && item.text && item.truncated !== undefined);
        verify(texts.length > 10);
        for (const text of texts)
            verify(!text.truncated, "cut off: " + text.text);
        const controls = items(page, item => item.visible && item.enabled && item.activeFocusOnTab);
        verify(controls.length >= data.leastControls, controls.length);
        const reached = [];
        page.forceActiveFocus();
        for (let i = 0; i < controls.length + 1; ++i) {
            keyClick(Qt.Key_Tab);
            reached.push(...controls.filter(control => control.activeFocus));
        }
        for (const control of controls) {
            verify(control.Accessible.name.length > 0, control + " has no name");
            verify(reached.indexOf(control) >= 0, control.Accessible.name + " is not reached");
        }
    }

    function test_the_monitor_is_used_from_the_keyboard() {
        showMonitor();
        compare(editor("field_0_0_2").visible, false);
        editor("monitorVersion").forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Down);
        compare(editor("monitorVersion").currentText, "Hardware A1");
        type("recordDuration", "9999999");
        keyClick(Qt.Key_Return);
        type("recordInterval", "5");
        keyClick(Qt.Key_Return);
        compare([manager["monitorRecordDurationSec"], manager["monitorRecordIntervalSec"]], [60, 5]);
        compare(manager.calls, [["selectMonitorHwVersion", "B2"]]);

        compare(editor("monitorNow2").text, "\u2014");
        const live = findChild(page, "monitorSource").live;
        editor("monitorValues").forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Space);
        compare(editor("monitorTick1").color.a, 0);
        const plot = editor("monitorPlot");
        plot.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Left, Qt.ShiftModifier);
        keyClick(Qt.Key_Left, Qt.ShiftModifier);
        verify(plot.readout.endsWith(": Controller Temperature 64.2 °C; Supply not read;"), plot.readout);
        keyClick(Qt.Key_Space);
        compare(editor("plotPause").text, "Go on");
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
        put(3, "switch_index", "0");
        manager.myMapChanged();
        manager.calls = [];
        mouseClick(editor("switch_0_0_3"));
        compare(manager.calls, data.on);
    }

    function test_a_value_shows_what_it_is_worth_data() {
        const late = { "connected": false, "text": "20" };
        return [{ "tag": "unread", "text": "", "note": "not read: lidar return code 1" },
                { "tag": "read", "text": "20", "note": "0 to 100" },
                { "tag": "written", "text": "20", "note": "written, not read back" },
                { "tag": "differs", "text": "20", "note": "wanted 80, lidar holds 20" },
                Object.assign({ "tag": "read, then lost", "note": "read at 19:04:12" }, late),
                Object.assign({ "tag": "differs, then lost",
                                "note": "wanted 80, at 19:04:12 the lidar held 20" }, late)];
    }

    function test_a_value_shows_what_it_is_worth(data) {
        manager["IsConnected"] = data.connected !== false;
        for (const [key, value] of [["state", data.tag.split(",")[0]], ["wanted", "80"],
                                    ["read_failure", "lidar return code 1"], ["read_at", "19:04:12"]])
            put(1, key, value);
        manager.myMapChanged();
        const field = editor("field_0_0_1");
        compare(field.text, data.text);
        compare(field.placeholderText, data.text === "" ? "—" : "");
        compare(editor("note_0_0_1").text, data.note);
        type("field_0_0_1", "42");
        keyClick(Qt.Key_Return);
        compare(manager.calls, [["SetText", 1, 0, 0, 1, "42"]]);
    }

    function test_typing_is_judged_while_it_goes_on() {
        for (const [text, good] of [["100", true], ["101", false], ["x", false], ["", false]]) {
            type("field_0_0_1", text + "5");
            keyClick(Qt.Key_Backspace);
            compare(editor("field_0_0_1").problem === "", good, text);
        }
    }

    function test_a_refresh_keeps_rows_and_typing_and_the_periodic_one_renews_timed_fields_only() {
        const field = editor("field_0_0_0");
        put(0, "current_val", "11");
        put(1, "current_val", "21");
        manager.myTimerMapChanged();
        compare(field.text, "11");
        compare(editor("field_0_0_1").text, "20");
        manager.myMapChanged();
        compare(editor("field_0_0_1").text, "21");
        type("field_0_0_0", "4");
        put(0, "current_val", "12");
        manager.myTimerMapChanged();
        manager.myMapChanged();
        compare(editor("field_0_0_0"), field);
        compare(field.text, "4");
        verify(field.activeFocus);
        keyClick(Qt.Key_Escape);
        compare(field.text, "12");
        compare(manager.calls, []);
    }

    function test_typing_survives_scrolling_out_of_sight() {
        const many = Array.from({ length: 300 }, (unused, i) => ["Row " + i, 1, 0, 0, 1]);
        manager.level2List = [[["Typed", 1, 0, 0, 0]].concat(many)];
        tryVerify(() => editor("field_0_0_0") !== null);
        type("field_0_0_0", "4");
        const list = editor("pageRows");
        verify(!list.scrollByKey(Qt.Key_Up));
        verify(list.scrollByKey(Qt.Key_End));
        verify(list.scrollByKey(Qt.Key_Home));
        compare(editor("field_0_0_0").text, "4");
        verify(page.hasEdits);
        keyClick(Qt.Key_2);
        compare(manager.calls, []);
        keyClick(Qt.Key_Return);
        keyClick(Qt.Key_Tab);
        compare(manager.calls, [["SetText", 1, 0, 0, 0, "42"]]);
        verify(page.hasEdits);
    }

    function test_save_has_its_guards_and_takes_what_is_still_being_typed() {
        manager["IsConnected"] = false;
        mouseClick(editor("saveButton"));
        manager["IsConnected"] = true;
        mouseClick(editor("saveButton"));
        compare(refusals, ["Please connect to lidar first", "Nothing to be saved"]);
        compare(manager.calls, []);
        type("field_0_0_1", "42");
        keyClick(Qt.Key_S, Qt.ControlModifier);
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
        compare(manager.calls, writing.concat([["SetText", 1, 0, 0, 1, "42"],
                                               ["SetMultiFovConfig", 7, "5"]]));
        const shown = () => [7, 8].map(i => editor("fov_" + i)).map(it => [it.text, it.pending]);
        compare(shown(), [["5", true], ["400", true]]);
        manager.calls = [];
        mouseClick(editor("cancelButton"));
        compare(manager.calls, [["GetLidarModuleInfo", 0]]);
        compare(shown(), [["200", false], ["200", false]]);
    }
}
