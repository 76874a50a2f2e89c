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
    Component { id: aboutComponent; AboutWindow { version: "1.0.1" } }
    SignalSpy { id: accepted; signalName: "accepted" }
    SignalSpy { id: rejected; signalName: "rejected" }

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
        return [{ tag: "success", component: successComponent, message: "Done", words: "" },
                { tag: "known", component: errorComponent,
                  message: "Please connect to lidar first", words: "press Connect" },
                { tag: "inside", component: errorComponent,
                  message: "Set Failed: stof", words: "what the lidar holds" },
                { tag: "unknown", component: errorComponent,
                  message: "<b>Never</b> heard of", words: "The log lists every step" }];
    }

    function test_a_notice_says_what_happened_and_what_to_do(data) {
        const box = make(data.component);
        box.show(data.message);
        tryVerify(() => box.opened);
        compare(findChild(box.contentItem, "dialogMessage").text, data.message);
        compare(findChild(box.contentItem, "dialogMessage").textFormat, Text.PlainText);
        const advice = findChild(box.contentItem, "dialogAdvice").text;
        verify(advice.indexOf(data.words) >= 0, advice);
        verify(!button(box, "dialogReject").visible);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !box.visible);
    }

    function test_notices_wait_in_line_even_equal_ones() {
        const box = make(errorComponent);
        const messages = ["first", "second", "second"];
        for (const message of messages)
            box.show(message);
        for (let left = messages.length - 1; left >= 0; --left) {
            tryCompare(box, "waiting", left);
            tryVerify(() => box.opened);
            compare(box.message, messages[messages.length - 1 - left]);
            keyClick(Qt.Key_Return);
        }
        tryVerify(() => !box.visible);
    }

    function test_a_question_is_answered_by_keys_and_by_its_buttons_data() {
        return [{ tag: "Return", key: Qt.Key_Return, yes: 1 },
                { tag: "Enter", key: Qt.Key_Enter, yes: 1 },
                { tag: "Escape", key: Qt.Key_Escape, yes: 0 },
                { tag: "the button for yes", button: "dialogAccept", yes: 1 },
                { tag: "the button for no", button: "dialogReject", yes: 0 }];
    }

    function test_a_question_is_answered_by_keys_and_by_its_buttons(data) {
        const box = make(questionComponent);
        box.ask("reset", "Reset?", "All settings go back.", "This cannot be undone.");
        tryVerify(() => box.opened);
        compare(box.purpose, "reset");
        compare(button(box, "dialogAccept").text, "Continue");
        if (data.button === undefined)
            keyClick(data.key);
        else
            mouseClick(button(box, data.button));
        tryVerify(() => !box.visible);
        compare(accepted.count, data.yes);
        compare(rejected.count, 1 - data.yes);
    }

    function test_a_long_message_scrolls_and_keeps_the_buttons_in_sight() {
        const box = make(errorComponent);
        box.show("A line of a very long message.\n".repeat(200));
        tryVerify(() => box.opened);
        verify(box.contentItem.contentHeight > box.contentItem.height);
        const accept = button(box, "dialogAccept");
        verify(accept.mapToItem(null, 0, 0).y + accept.height < testCase.height);
    }

    function test_about_names_the_version() {
        const box = make(aboutComponent);
        box.open();
        tryVerify(() => box.opened);
        verify(Array.from(box.extra).some(item => item.text === "Version 1.0.1"));
    }
}
