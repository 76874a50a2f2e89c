import QtQuick 2.15
import QtTest 1.15
import "qrc:/Qml/assembly"
import "qrc:/Qml/theme"

TestCase {
    id: testCase

    name: "Buttons"
    when: windowShown
    visible: true
    width: 400
    height: 200

    Component { id: plain; DefaultButton { text: "Cancel" } }
    Component { id: primary; DefaultButton { text: "Connect"; emphasised: true } }
    Component {
        id: tool
        DefaultToolButton { label: "Settings"; icon.source: "qrc:/Qml/icons/gear.svg" }
    }
    Component { id: check; DefaultCheckBox { text: "Raw bytes" } }
    SignalSpy { id: clicked; signalName: "clicked" }

    function test_mouse_and_keys_press_them_data() {
        return [{ tag: "DefaultButton", component: plain, name: "Cancel" },
                { tag: "emphasised", component: primary, name: "Connect" },
                { tag: "DefaultToolButton", component: tool, name: "Settings" },
                { tag: "DefaultCheckBox", component: check, name: "Raw bytes" }];
    }

    function test_mouse_and_keys_press_them(data) {
        const button = createTemporaryObject(data.component, testCase);
        clicked.target = button;
        clicked.clear();
        compare(button.Accessible.name, data.name);
        button.forceActiveFocus(Qt.TabFocusReason);
        verify(button.visualFocus);
        keyClick(Qt.Key_Space);
        compare(clicked.count, 1);
        keyClick(Qt.Key_Return);
        compare(clicked.count, 2);
        mouseClick(button);
        compare(clicked.count, 3);
        button.enabled = false;
        mouseClick(button);
        compare(clicked.count, 3);
    }

    function test_a_long_text_widens_the_button() {
        const button = createTemporaryObject(plain, testCase, { text: "Reset to factory settings" });
        verify(button.width >= button.contentItem.implicitWidth + 2 * Theme.gapWide);
        verify(!button.contentItem.truncated);
    }

    function test_the_lamp_has_its_two_colours() {
        const lamp = createTemporaryQmlObject("import 'qrc:/Qml/assembly'; StatusLamp {}", testCase);
        compare(lamp.color, "#ff0000");
        compare(lamp.Accessible.name, "Not connected");
        lamp.on = true;
        compare(lamp.color, "#00ff6b");
        compare(lamp.Accessible.name, "Connected");
    }
}
