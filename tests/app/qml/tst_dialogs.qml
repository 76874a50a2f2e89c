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

    Component { id: error; ErrorInfoWindow {} }
    Component { id: success; SuccessInfoWindow {} }
    Component { id: question; MessageWindow {} }
    Component { id: about; AboutWindow { version: "1.0.1" } }
    SignalSpy { id: accepted; signalName: "accepted" }

    function make(component) {
        const box = createTemporaryObject(component, testCase);
        accepted.target = box;
        accepted.clear();
        return box;
    }

    // What is shown, what it says, and what a key or a button makes of it.
    function test_a_box_says_what_happened_and_is_answered_data() {
        const known = "Please connect to lidar first", unknown = "<b>Never</b> heard of";
        return [{ tag: "done", box: success, message: "Done", words: "", key: Qt.Key_Escape, yes: 0 },
                { tag: "known", box: error, message: known, words: "press Connect",
                  key: Qt.Key_Return, yes: 1 },
                { tag: "inside", box: error, message: "Set Failed: stof",
                  words: "still marked as edited", button: "dialogAccept", yes: 1 },
                { tag: "unknown", box: error, message: unknown, words: "The log lists every step",
                  key: Qt.Key_Escape, yes: 0 },
                { tag: "question, Enter", box: question, key: Qt.Key_Enter, yes: 1 },
                { tag: "question, Escape", box: question, key: Qt.Key_Escape, yes: 0 },
                { tag: "question, yes", box: question, button: "dialogAccept", yes: 1 },
                { tag: "question, no", box: question, button: "dialogReject", yes: 0 }];
    }

    function test_a_box_says_what_happened_and_is_answered(data) {
        const box = make(data.box);
        const asks = data.box === question;
        if (asks)
            box.ask("reset", "Reset?", "All settings go back.", "This cannot be undone.");
        else
            box.show(data.message);
        tryVerify(() => box.opened);
        const message = findChild(box.contentItem, "dialogMessage");
        compare(message.text, asks ? "All settings go back." : data.message);
        compare(message.textFormat, Text.PlainText);
        const advice = findChild(box.contentItem, "dialogAdvice").text;
        verify(advice.indexOf(data.words || "") >= 0, advice);
        compare(findChild(box.footer, "dialogReject").visible, asks);
        compare(box.purpose, asks ? "reset" : undefined);
        if (data.button === undefined)
            keyClick(data.key);
        else
            mouseClick(findChild(box.footer, data.button));
        tryVerify(() => !box.visible);
        compare(accepted.count, data.yes);
    }

    function test_notices_wait_in_line_and_a_long_one_keeps_its_buttons_in_sight() {
        const box = make(error);
        const messages = ["A line of a very long message.\n".repeat(200), "second", "second"];
        for (const message of messages)
            box.show(message);
        tryVerify(() => box.opened);
        verify(box.contentItem.contentHeight > box.contentItem.height);
        const accept = findChild(box.footer, "dialogAccept");
        verify(accept.mapToItem(null, 0, accept.height).y < testCase.height);
        for (const message of messages) {
            tryVerify(() => box.opened);
            compare(box.message, message);
            keyClick(Qt.Key_Return);
            tryVerify(() => !box.opened);
        }
        compare(accepted.count, 3);
        tryVerify(() => !box.visible);
    }

    function test_about_names_the_version() {
        const box = make(about);
        box.open();
        tryVerify(() => box.opened);
        verify(Array.from(box.extra).some(item => item.text === "Version 1.0.1"));
    }
}
