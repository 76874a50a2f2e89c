import QtQuick 2.15
import QtTest 1.15
import "qrc:/Qml/assembly"

TestCase {
    id: testCase

    name: "Dialogs"
    when: windowShown
    visible: true
    width: 700
    height: 500

    Component { id: errorComponent; ErrorInfoWindow {} }
    Component { id: successComponent; SuccessInfoWindow {} }
    Component { id: questionComponent; MessageWindow {} }
    Component { id: aboutComponent; AboutWindow { version: "1.0.1"; details: ["Model: Orca"] } }
    SignalSpy { id: accepted; signalName: "accepted" }
    SignalSpy { id: rejected; signalName: "rejected" }
    SignalSpy { id: dismissed; signalName: "dismissed" }

    function make(component) {
        const box = createTemporaryObject(component, testCase);
        for (const spy of [accepted, rejected]) {
            spy.target = box;
            spy.clear();
        }
        return box;
    }

    function button(box, name) {
        return findChild(box.footer, name);
    }

    function test_a_notice_says_what_happened_and_what_to_do_data() {
        return [{ tag: "error", component: errorComponent },
                { tag: "success", component: successComponent }];
    }

    function test_a_notice_says_what_happened_and_what_to_do(data) {
        const box = make(data.component);
        box.show("The link is down", "Press Connect again.");
        tryVerify(() => box.opened);
        verify(box.title.length > 0);
        compare(findChild(box.contentItem, "dialogMessage").text, "The link is down");
        compare(findChild(box.contentItem, "dialogAdvice").text, "Press Connect again.");
        verify(!button(box, "dialogReject").visible);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !box.visible);
        box.show("Again");
        verify(findChild(box.contentItem, "dialogAdvice").text.length > 0);
    }

    function test_a_failure_brings_its_own_advice_data() {
        return [{ tag: "known", message: "Please connect to lidar first", words: "press Connect" },
                { tag: "inside", message: "Set Failed: stof", words: "what the lidar holds" },
                { tag: "unknown", message: "Never heard of", words: "The log lists every step" }];
    }

    function test_a_failure_brings_its_own_advice(data) {
        const box = make(errorComponent);
        box.show(data.message);
        tryVerify(() => box.opened);
        verify(box.advice.indexOf(data.words) >= 0, box.advice);
    }

    function test_notices_wait_in_line_even_equal_ones() {
        const box = make(errorComponent);
        dismissed.target = box;
        dismissed.clear();
        box.show("first");
        box.show("second");
        box.show("second");
        const shown = [];
        for (let i = 0; i < 3; ++i) {
            tryVerify(() => box.opened);
            shown.push(box.message);
            keyClick(Qt.Key_Return);
            tryCompare(box, "waiting", Math.max(0, 1 - i));
        }
        tryCompare(dismissed, "count", 1);
        compare(shown, ["first", "second", "second"]);
        verify(!box.visible);
    }

    function test_a_question_takes_enter_as_yes_and_escape_as_no_data() {
        return [{ tag: "Return", key: Qt.Key_Return, yes: 1 },
                { tag: "Enter", key: Qt.Key_Enter, yes: 1 },
                { tag: "Space", key: Qt.Key_Space, yes: 1 },
                { tag: "Escape", key: Qt.Key_Escape, yes: 0 }];
    }

    function test_a_question_takes_enter_as_yes_and_escape_as_no(data) {
        const box = make(questionComponent);
        box.ask("reset", "Reset?", "All settings go back.", "This cannot be undone.");
        tryVerify(() => box.opened);
        compare(box.purpose, "reset");
        compare(button(box, "dialogAccept").text, "Continue");
        keyClick(data.key);
        tryVerify(() => !box.visible);
        compare(accepted.count, data.yes);
        compare(rejected.count, 1 - data.yes);
    }

    function test_both_buttons_of_a_question_work() {
        const box = make(questionComponent);
        box.ask("reset", "Reset?", "All settings go back.", "", "Reset");
        tryVerify(() => box.opened);
        compare(button(box, "dialogAccept").text, "Reset");
        mouseClick(button(box, "dialogReject"));
        compare(rejected.count, 1);
        tryVerify(() => !box.visible);
        box.ask("reset", "Reset?", "All settings go back.", "");
        tryVerify(() => box.opened);
        keyClick(Qt.Key_Backtab);
        verify(button(box, "dialogReject").activeFocus, "Tab moves between the buttons");
        mouseClick(button(box, "dialogAccept"));
        compare(accepted.count, 1);
    }

    function test_a_warning_has_no_way_to_say_no() {
        const box = make(questionComponent);
        box.warn("Check the model", "It does not match.", "Choose another.");
        tryVerify(() => box.opened);
        verify(!button(box, "dialogReject").visible);
        compare(button(box, "dialogAccept").text, "OK");
    }

    function test_a_long_message_scrolls_and_keeps_the_buttons_in_sight() {
        const box = make(errorComponent);
        box.show("A line of a very long message.\n".repeat(200));
        tryVerify(() => box.opened);
        verify(box.height <= testCase.height);
        verify(box.contentItem.contentHeight > box.contentItem.height);
        const corner = button(box, "dialogAccept").mapToItem(null, 0, 0);
        verify(corner.y + button(box, "dialogAccept").height < testCase.height);
    }

    function test_markup_in_a_message_stays_text() {
        const box = make(errorComponent);
        box.show("<b>bold</b><img src='x'>");
        compare(findChild(box.contentItem, "dialogMessage").textFormat, Text.PlainText);
    }

    function test_about_names_the_version() {
        const box = make(aboutComponent);
        box.open();
        tryVerify(() => box.opened);
        const texts = box.extra;
        let all = "";
        for (let i = 0; i < texts.length; ++i)
            all += texts[i].text !== undefined ? texts[i].text + "\n" : "";
        verify(all.indexOf("Version 1.0.1") >= 0, all);
        verify(all.indexOf("Model: Orca") >= 0, all);
    }
}
