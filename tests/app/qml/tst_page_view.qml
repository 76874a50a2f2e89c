import QtQuick 2.15
import QtTest 1.15

// What a page shows, and how it is used.
PageCase {
    id: test

    name: "PageView"

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
}
