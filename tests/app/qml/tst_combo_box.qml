import QtQuick 2.15
import QtTest 1.15
import "qrc:/Qml/assembly"

TestCase {
    id: testCase

    name: "DefaultComboBox"
    when: windowShown
    visible: true
    width: 400
    height: 300

    Component {
        id: boxComponent
        DefaultComboBox { label: "Return mode"; model: ["Strongest", "Last", "Dual"]; chosenIndex: 1 }
    }
    SignalSpy { id: chosen; signalName: "chosen" }

    property var box

    function init() {
        box = createTemporaryObject(boxComponent, testCase);
        chosen.target = box;
        chosen.clear();
    }

    function test_follows_the_source_without_reporting() {
        compare(box.displayText, "Last");
        box.chosenIndex = 2;
        compare(box.displayText, "Dual");
        box.chosenIndex = -1;
        compare(box.displayText, "");
        compare(chosen.count, 0);
    }

    function test_a_new_list_keeps_the_choice() {
        box.model = ["A", "B"];
        compare(box.displayText, "B");
        compare(chosen.count, 0);
    }

    function test_picking_with_the_mouse_reports_the_entry() {
        mouseClick(box);
        tryVerify(() => box.popup.opened);
        const list = box.popup.contentItem;
        tryVerify(() => list.itemAtIndex(2) !== null);
        compare(list.itemAtIndex(0).text, "Strongest");
        mouseClick(list.itemAtIndex(2));
        compare(chosen.count, 1);
        compare(chosen.signalArguments[0][0], 2);
        tryVerify(() => !box.popup.visible);
    }

    function test_picking_the_same_entry_is_no_change() {
        mouseClick(box);
        tryVerify(() => box.popup.opened);
        mouseClick(box.popup.contentItem.itemAtIndex(1));
        compare(chosen.count, 0);
    }

    function test_keys_pick_and_escape_leaves() {
        box.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Down);
        compare(chosen.count, 1);
        compare(chosen.signalArguments[0][0], 2);
        keyClick(Qt.Key_Space);
        tryVerify(() => box.popup.opened);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !box.popup.visible);
        compare(chosen.count, 1);
    }

    function test_a_refused_pick_can_be_taken_back() {
        box.forceActiveFocus();
        keyClick(Qt.Key_Up);
        compare(box.displayText, "Strongest");
        box.revert();
        compare(box.displayText, "Last");
    }

    function test_a_role_names_the_text_of_each_entry() {
        box.textRole = "name";
        box.model = [{ name: "Alpha" }, { name: "Beta" }];
        compare(box.displayText, "Beta");
        mouseClick(box);
        tryVerify(() => box.popup.opened);
        tryVerify(() => box.popup.contentItem.itemAtIndex(0) !== null);
        compare(box.popup.contentItem.itemAtIndex(0).text, "Alpha");
    }
}
