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
    Component { id: success; SuccessInfoWindow { width: 300; stayMs: 400 } }
    Component { id: question; MessageWindow {} }
    Component { id: field; DefaultTextField { y: 100; width: 100 } }
    SignalSpy { id: accepted; signalName: "accepted" }
    SignalSpy { id: answered; signalName: "answered" }

    function make(component) {
        const box = createTemporaryObject(component, testCase);
        accepted.target = box;
        accepted.clear();
        return box;
    }

    // What is shown, what it says, and what a key or a button makes of it.
    function test_trouble_says_what_happened_and_is_put_away_data() {
        const known = "Please connect to lidar first", unknown = "<b>Never</b> heard of";
        return [{ tag: "known", message: known, words: "press Connect", key: Qt.Key_Return, yes: 1 },
                { tag: "inside", message: "Set Failed: stof", words: "still marked as edited",
                  button: "dialogAccept", yes: 1 },
                { tag: "unknown", message: unknown, words: "", key: Qt.Key_Escape, yes: 0 }];
    }

    function test_trouble_says_what_happened_and_is_put_away(data) {
        const box = make(error);
        box.show(data.message);
        tryVerify(() => box.opened);
        const message = findChild(box.contentItem, "dialogMessage");
        compare(message.text, data.message);
        compare(message.textFormat, Text.PlainText);
        const advice = findChild(box.contentItem, "dialogAdvice").text;
        verify(data.words === "" ? advice === "" : advice.indexOf(data.words) >= 0, advice);
        verify(!findChild(box.footer, "dialogReject").visible);
        if (data.button === undefined)
            keyClick(data.key);
        else
            mouseClick(findChild(box.footer, data.button));
        tryVerify(() => !box.visible);
        compare(accepted.count, data.yes);
    }

    // A hasty Enter loses nothing.
    function test_a_question_is_answered_data() {
        return [{ tag: "Enter", key: Qt.Key_Enter, answer: "accept" },
                { tag: "Escape", key: Qt.Key_Escape, answer: "reject" },
                { tag: "yes", button: "dialogAccept", answer: "accept" },
                { tag: "no", button: "dialogReject", answer: "reject" },
                { tag: "dangerous, Enter", dangerous: true, key: Qt.Key_Return, answer: "reject" },
                { tag: "dangerous, yes", dangerous: true, button: "dialogAccept", answer: "accept" },
                { tag: "guarded, Enter", guarded: true, key: Qt.Key_Return, answer: "reject" },
                { tag: "third", other: "Discard", button: "dialogOther", answer: "other" }];
    }

    function test_a_question_is_answered(data) {
        const box = make(question);
        answered.target = box;
        answered.clear();
        box.ask({ purpose: "reset", argument: 5, title: "Reset?", message: "All go back.",
                  advice: "", accept: "Reset", other: data.other,
                  dangerous: data.dangerous, guarded: data.guarded });
        box.ask({ title: "Next", message: "", advice: "", accept: "OK", reject: null });
        tryVerify(() => box.opened);
        const safe = data.dangerous === true || data.guarded === true;
        compare(findChild(box.footer, "dialogReject").emphasised, safe);
        compare(findChild(box.footer, "dialogAccept").emphasised, !safe);
        compare(findChild(box.footer, "dialogOther").visible, data.other !== undefined);
        if (data.button === undefined)
            keyClick(data.key);
        else
            mouseClick(findChild(box.footer, data.button));
        tryCompare(answered, "count", 1);
        compare(Array.from(answered.signalArguments[0]), [data.answer, "reset", 5]);
        tryVerify(() => box.opened && box.title === "Next");
        verify(!findChild(box.footer, "dialogReject").visible);
    }

    function test_a_success_passes_by_itself_but_not_under_the_pointer() {
        const typing = createTemporaryObject(field, testCase);
        typing.forceActiveFocus();
        const notices = createTemporaryObject(success, testCase);
        notices.show("<b>Saved</b>", "");
        notices.show("<b>Saved</b>", "");
        notices.keep("Serial is working.");
        const first = findChild(notices, "noticeText");
        compare(first.text, "<b>Saved</b> (2 times)");
        compare(first.textFormat, Text.PlainText);
        verify(typing.activeFocus);
        const place = first.mapToItem(testCase, 1, 1);
        mouseMove(testCase, place.x, place.y);
        wait(2 * notices.stayMs);
        verify(findChild(notices, "noticeText") !== null);
        mouseMove(testCase, 0, testCase.height - 1);
        tryVerify(() => findChild(notices, "noticeText").text === "Serial is working.");
        notices.drop("Serial is working.");
        tryVerify(() => findChild(notices, "quietNotice") === null);
        notices.keep("x");
        mouseClick(findChild(notices, "noticeClose"));
        tryVerify(() => findChild(notices, "quietNotice") === null);
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
}
