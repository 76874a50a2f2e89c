import QtQuick 2.15
import QtTest 1.15
import "qrc:/Qml/assembly"
import "qrc:/Qml/controls"

// The controls that follow a source and report what the user wants.
TestCase {
    id: testCase

    name: "Controls"
    when: windowShown
    visible: true
    width: 400
    height: 300

    Component { id: toggle; DefaultSwitch { value: true } }
    Component { id: box; DefaultComboBox { model: ["Strongest", "Last", "Dual"]; chosenIndex: 1 } }
    Component { id: tabs; TabWidget { width: 400; titles: ["Overview", "Scan"] } }
    Component {
        id: pair

        Row {
            property alias first: first
            property alias second: second

            DefaultButton { id: first; text: "Cancel"; hint: "It takes two lines to say what it does. ".repeat(2) }
            DefaultButton { id: second; text: "Save"; hint: first.hint }
        }
    }
    SignalSpy { id: wish }

    function make(component, signalName) {
        const control = createTemporaryObject(component, testCase);
        wish.target = null;
        wish.signalName = signalName;
        wish.target = control;
        wish.clear();
        return control;
    }

    function tipOf(control) {
        return Array.from(control.data).concat(Array.from(control.resources)).find(item => item.wanted !== undefined);
    }

    function test_a_tooltip_covers_no_control_and_goes_at_a_press_data() {
        return [{ tag: "top left", x: 0, y: 0 }, { tag: "bottom left", x: 0, y: 268 },
                { tag: "top right", x: 208, y: 0 }, { tag: "bottom right", x: 208, y: 268 }];
    }

    function test_a_tooltip_covers_no_control_and_goes_at_a_press(data) {
        const buttons = createTemporaryObject(pair, testCase, { x: data.x, y: data.y });
        for (const button of [buttons.first, buttons.second]) {
            const tip = tipOf(button);
            button.forceActiveFocus(Qt.TabFocusReason);
            tryVerify(() => tip.opened);
            const box = tip.contentItem.parent;
            compare(box.height, tip.implicitHeight);
            const low = box.mapToItem(testCase, 0, 0).y;
            verify(low >= data.y + button.height || low + box.height <= data.y, low);
            verify(low >= 0 && low + box.height <= testCase.height);
            keyClick(Qt.Key_A);
            tryVerify(() => !tip.visible);
        }
    }

    // Each by its keys: what it reports, and what it shows when the source holds something else.
    function test_the_user_is_reported_and_the_source_is_followed_data() {
        return [{ tag: "switch", component: toggle, signalName: "switched", key: Qt.Key_Space,
                  reported: false, source: "value", value: false, shown: "checked" },
                { tag: "choice", component: box, signalName: "chosen", key: Qt.Key_Down,
                  reported: 2, source: "chosenIndex", value: 0, shown: "currentIndex" },
                { tag: "tabs", component: tabs, signalName: "selected", key: Qt.Key_End,
                  reported: 1, source: "currentIndex", value: 0, shown: "currentIndex" }];
    }

    function test_the_user_is_reported_and_the_source_is_followed(data) {
        const control = make(data.component, data.signalName);
        control.forceActiveFocus(Qt.TabFocusReason);
        keyClick(data.key);
        compare(wish.count, 1);
        compare(wish.signalArguments[0][0], data.reported);
        control[data.source] = data.value;
        compare(control[data.shown], data.value);
        compare(wish.count, 1);
    }
}
