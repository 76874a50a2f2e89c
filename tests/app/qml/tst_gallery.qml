import QtQuick 2.15
import QtQuick.Window 2.15
import QtTest 1.15
import "."

// What holds for every control alike, checked on a page that shows all of them.
TestCase {
    id: testCase

    name: "Gallery"
    when: windowShown
    visible: true
    width: 1300
    height: 800

    Gallery { id: gallery; anchors.fill: parent }

    function visit(item, what) {
        what(item);
        for (let i = 0; i < item.children.length; ++i)
            visit(item.children[i], what);
    }

    function test_every_control_has_a_name() {
        let controls = 0;
        visit(gallery, item => {
            if (!item.visible || item.activeFocusOnTab !== true)
                return;
            ++controls;
            verify(item.Accessible.name.length > 0, item + " has no name");
        });
        verify(controls > 20);
    }

    function test_every_icon_is_there() {
        let icons = 0;
        visit(gallery, item => {
            if (item.status === undefined || item.sourceSize === undefined)
                return;
            ++icons;
            compare(item.status, Image.Ready, item.source);
        });
        verify(icons > 15);
    }

    function test_no_text_is_cut_off() {
        let texts = 0;
        visit(gallery, item => {
            if (item.visible && item.truncated !== undefined && item.text.length > 0) {
                ++texts;
                verify(!item.truncated, "cut off: " + item.text);
                verify(item.height >= item.contentHeight - 1, "too low: " + item.text);
            }
        });
        verify(texts > 20);
    }

    function test_tab_reaches_every_control_and_comes_round() {
        const wanted = [];
        visit(gallery, item => {
            if (item.visible && item.enabled && item.activeFocusOnTab === true)
                wanted.push(item);
        });
        const reached = [];
        gallery.forceActiveFocus();
        for (let i = 0; i < wanted.length + 1; ++i) {
            keyClick(Qt.Key_Tab);
            const item = gallery.Window.window.activeFocusItem;
            if (reached.indexOf(item) < 0)
                reached.push(item);
        }
        for (const item of wanted)
            verify(reached.indexOf(item) >= 0, item + " " + item.Accessible.name + " is not reached");
    }
}
