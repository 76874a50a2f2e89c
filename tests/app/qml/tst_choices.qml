import QtQuick 2.15
import QtTest 1.15
import "qrc:/Qml/assembly"

TestCase {
    id: testCase

    name: "Choices"
    when: windowShown
    visible: true
    width: 400
    height: 300

    Component {
        id: boxComponent
        DefaultComboBox { model: ["Strongest", "Last", "Dual"]; chosenIndex: 1 }
    }
    Component {
        id: tabsComponent
        TabWidget { width: 400; titles: ["Overview", "Scan", "Network"] }
    }
    SignalSpy { id: chosen; signalName: "chosen" }
    SignalSpy { id: selected; signalName: "selected" }

    property var box
    property var tabs

    function init() {
        box = createTemporaryObject(boxComponent, testCase, { y: 200 });
        tabs = createTemporaryObject(tabsComponent, testCase);
        chosen.target = box;
        chosen.clear();
        selected.target = tabs;
        selected.clear();
    }

    function pick(index) {
        mouseClick(box);
        tryVerify(() => box.popup.opened);
        const list = box.popup.contentItem;
        tryVerify(() => list.itemAtIndex(index) !== null);
        mouseClick(list.itemAtIndex(index));
        tryVerify(() => !box.popup.visible);
    }

    function tab(index) {
        return findChild(tabs, "tab" + index);
    }

    function test_a_box_follows_the_source_without_reporting() {
        compare(box.displayText, "Last");
        box.chosenIndex = 2;
        compare(box.displayText, "Dual");
        box.chosenIndex = 1;
        box.textRole = "name";
        box.model = [{ name: "Alpha" }, { name: "Beta" }];
        compare(box.displayText, "Beta", "a new list keeps the choice");
        compare(chosen.count, 0);
    }

    function test_picking_with_the_mouse_reports_another_entry() {
        pick(1);
        compare(chosen.count, 0);
        pick(2);
        compare(chosen.count, 1);
        compare(chosen.signalArguments[0][0], 2);
    }

    function test_keys_pick_and_a_refused_pick_can_be_taken_back() {
        box.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Down);
        compare(chosen.signalArguments[0][0], 2);
        box.revert();
        compare(box.displayText, "Last");
        keyClick(Qt.Key_Space);
        tryVerify(() => box.popup.opened);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !box.popup.visible);
        compare(chosen.count, 1);
    }

    function test_only_another_tab_is_reported() {
        tabs.currentIndex = 1;
        verify(tab(1).Accessible.selected);
        compare(selected.count, 0);
        mouseClick(tab(2));
        mouseClick(tab(2));
        compare(selected.count, 1);
        compare(selected.signalArguments[0][0], 2);
    }

    function test_keys_move_along_the_tabs_and_stop_at_the_ends() {
        tabs.forceActiveFocus(Qt.TabFocusReason);
        const steps = [[Qt.Key_Left, 0], [Qt.Key_Right, 1], [Qt.Key_End, 2], [Qt.Key_Right, 2],
                       [Qt.Key_Home, 0]];
        for (const step of steps) {
            keyClick(step[0]);
            compare(tabs.currentIndex, step[1]);
        }
        compare(selected.count, 3);
        tabs.titles = [];
        keyClick(Qt.Key_End);
        compare(selected.count, 3, "no tabs at all");
    }

    function test_more_tabs_than_fit_scroll_to_the_current_one() {
        tabs.titles = Array.from({ length: 40 }, (unused, i) => "Page " + i);
        tabs.currentIndex = 39;
        tryVerify(() => tab(39) !== null);
        tryVerify(() => tab(39).mapToItem(tabs, tab(39).width, 0).x <= tabs.width + 1);
    }
}
