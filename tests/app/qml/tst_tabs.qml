import QtQuick 2.15
import QtTest 1.15
import "qrc:/Qml/assembly"

TestCase {
    id: testCase

    name: "TabWidget"
    when: windowShown
    visible: true
    width: 400
    height: 100

    Component {
        id: tabsComponent
        TabWidget { width: 400; titles: ["Overview", "Scan", "Network"] }
    }
    SignalSpy { id: selected; signalName: "selected" }

    property var tabs

    function init() {
        tabs = createTemporaryObject(tabsComponent, testCase);
        selected.target = tabs;
        selected.clear();
    }

    function tab(index) {
        return findChild(tabs, "tab" + index);
    }

    function test_a_click_selects() {
        mouseClick(tab(2));
        compare(tabs.currentIndex, 2);
        compare(selected.count, 1);
        compare(selected.signalArguments[0][0], 2);
        mouseClick(tab(2));
        compare(selected.count, 1, "selecting the selected tab is no change");
    }

    function test_keys_move_and_stop_at_the_ends() {
        tabs.forceActiveFocus(Qt.TabFocusReason);
        const steps = [[Qt.Key_Left, 0], [Qt.Key_Right, 1], [Qt.Key_End, 2], [Qt.Key_Right, 2],
                       [Qt.Key_Home, 0]];
        for (const step of steps) {
            keyClick(step[0]);
            compare(tabs.currentIndex, step[1]);
        }
        compare(selected.count, 3);
    }

    function test_setting_the_index_reports_nothing() {
        tabs.currentIndex = 1;
        compare(selected.count, 0);
        verify(tab(1).Accessible.selected);
        verify(!tab(0).Accessible.selected);
    }

    function test_more_tabs_than_fit_scroll_to_the_current_one() {
        tabs.titles = Array.from({ length: 40 }, (unused, i) => "Page " + i);
        tabs.currentIndex = 39;
        tryVerify(() => tab(39) !== null);
        tryVerify(() => {
            const x = tab(39).mapToItem(tabs, 0, 0).x;
            return x >= 0 && x + tab(39).width <= tabs.width + 1;
        });
    }

    function test_no_tabs_at_all() {
        tabs.titles = [];
        tabs.forceActiveFocus();
        keyClick(Qt.Key_Right);
        keyClick(Qt.Key_End);
        compare(selected.count, 0);
    }
}
