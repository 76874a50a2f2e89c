import QtQuick 2.15
import QtTest 1.15
import "qrc:/Qml/assembly"

TestCase {
    id: testCase

    name: "DefaultSwitch"
    when: windowShown
    visible: true
    width: 300
    height: 100

    Component { id: switchComponent; DefaultSwitch { label: "Heater"; value: true } }
    SignalSpy { id: switched; signalName: "switched" }

    property var control

    function init() {
        control = createTemporaryObject(switchComponent, testCase);
        switched.target = control;
        switched.clear();
    }

    function test_follows_its_value_without_reporting() {
        verify(control.checked);
        control.value = false;
        verify(!control.checked);
        compare(switched.count, 0);
    }

    function test_a_click_reports_the_wish() {
        mouseClick(control);
        compare(switched.count, 1);
        compare(switched.signalArguments[0][0], false);
    }

    function test_follows_its_value_after_the_user_moved_it() {
        mouseClick(control);
        control.value = false;
        control.value = true;
        verify(control.checked);
    }

    function test_keys_move_it_data() {
        return [{ tag: "Space", key: Qt.Key_Space }, { tag: "Return", key: Qt.Key_Return },
                { tag: "Enter", key: Qt.Key_Enter }];
    }

    function test_keys_move_it(data) {
        control.forceActiveFocus(Qt.TabFocusReason);
        keyClick(data.key);
        compare(switched.count, 1);
        compare(switched.signalArguments[0][0], false);
        verify(!control.checked);
    }

    function test_a_disabled_switch_stays() {
        control.enabled = false;
        mouseClick(control);
        verify(control.checked);
        compare(switched.count, 0);
    }
}
