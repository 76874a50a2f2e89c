import QtQuick 2.15
import QtTest 1.15
import TevronTest 1.0
import "qrc:/Qml/assembly"

// One page with a row of every kind, on a manager that only takes notes.
TestCase {
    id: test

    property var page: null
    property var manager: null
    property var leaves: []
    property var refusals: []

    when: windowShown
    width: 900
    height: 700
    visible: true

    Component {
        id: pageComponent

        PageView {
            anchors.fill: parent
            onRefused: test.refusals.push(reason)
        }
    }
    Component { id: managerComponent; FakeManager {} }

    function leaf(type, value, more) {
        return Object.assign({
            "var_type": type, "current_val": value, "permission": 1, "switch_index": "1",
            "options": ["Strongest", "Last", "Dual"], "option_index": 1, "option_num": 3,
            "set_cmd": "0x12", "edited": false, "hint": "0 to 100", "range_min": 0,
            "range_max": 100, "page_description": "About the page"
        }, more);
    }

    function init() {
        refusals = [];
        manager = managerComponent.createObject(test);
        leaves = [leaf("uint16", "10", { "timer_update": true }), leaf("uint16", "20"),
                  leaf("string", "fixed", { "permission": 0 }), leaf("uint16", "3"),
                  leaf("uint8", "1"), leaf("uint8", "1"), leaf("uint8", "7"),
                  leaf("raw", "", { "set_cmd": "0x22" })];
        manager.myMap = [[leaves]];
        manager.level2List = [[["Timed", 1, 0, 0, 0], ["Plain", 1, 0, 0, 1], ["Fixed", 0, 0, 0, 2],
                               ["Switched", 2, 0, 0, 3], ["Choice", 3, 0, 0, 4],
                               ["Tall", 5, 0, 0, 5], ["Unknown", 6, 0, 0, 6],
                               ["Angles", 1, 0, 0, 7]]];
        manager["FovList"] = ["0", "1", "2", "3", "4", "5", "6", "7", "8", "9"];
        manager["heldAngles"] = manager["FovList"];
        page = createTemporaryObject(pageComponent, test, { "manager": manager });
        tryVerify(() => editor("fov_9") !== null);
        manager.calls = [];
    }

    function editor(name) { return findChild(page, name); }

    function put(index, key, value) {
        leaves[index][key] = value;
        manager.myMap = [[leaves]];
    }

    function type(name, text) {
        editor(name).forceActiveFocus();
        editor(name).selectAll();
        for (const letter of text)
            keyClick(letter);
    }
}
