import QtQuick 2.15
import QtTest 1.15
import "qrc:/Qml/assembly"
import "qrc:/Qml/controls"

TestCase {
    id: testCase

    name: "Buttons"
    when: windowShown
    visible: true
    width: 400
    height: 200

    Component { id: plain; DefaultButton { text: "Cancel" } }
    Component {
        id: tool
        DefaultToolButton { label: "Settings"; icon.source: "qrc:/Qml/icons/gear.svg" }
    }
    Component { id: check; DefaultCheckBox { text: "Raw bytes" } }
    Component { id: toggle; DefaultSwitch { label: "Heater"; value: true } }
    SignalSpy { id: pressed; signalName: "clicked" }
    SignalSpy { id: switched; signalName: "switched" }

    function test_mouse_and_keys_press_them_data() {
        return [{ tag: "DefaultButton", component: plain },
                { tag: "DefaultToolButton", component: tool },
                { tag: "DefaultCheckBox", component: check }];
    }

    function test_mouse_and_keys_press_them(data) {
        const button = createTemporaryObject(data.component, testCase);
        pressed.target = button;
        pressed.clear();
        button.forceActiveFocus(Qt.TabFocusReason);
        verify(button.visualFocus);
        keyClick(Qt.Key_Space);
        keyClick(Qt.Key_Return);
        mouseClick(button);
        compare(pressed.count, 3);
        button.enabled = false;
        mouseClick(button);
        compare(pressed.count, 3);
    }

    function test_a_switch_reports_the_wish_and_follows_its_value() {
        const control = createTemporaryObject(toggle, testCase);
        switched.target = control;
        control.forceActiveFocus(Qt.TabFocusReason);
        const wishes = [() => mouseClick(control), () => keyClick(Qt.Key_Space),
                        () => keyClick(Qt.Key_Return)];
        wishes.forEach((wish, i) => {
            wish();
            compare(switched.count, i + 1);
            compare(switched.signalArguments[i][0], false);
            control.value = false;
            control.value = true;
            verify(control.checked);
        });
        control.enabled = false;
        mouseClick(control);
        compare(switched.count, wishes.length);
    }
}
