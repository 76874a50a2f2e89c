import QtQuick 2.15
import QtTest 1.15
import "qrc:/Qml/assembly"
import "qrc:/Qml/theme"

TestCase {
    id: testCase

    name: "DefaultTextField"
    when: windowShown
    visible: true
    width: 400
    height: 200

    Component {
        id: fieldComponent
        DefaultTextField { value: "600"; label: "Spin rate"; unit: "rpm"; hint: "300 to 1200 rpm" }
    }
    Component { id: elsewhereComponent; DefaultTextField { y: 100 } }
    SignalSpy { id: committed; signalName: "committed" }

    property var field

    function init() {
        field = createTemporaryObject(fieldComponent, testCase);
        committed.target = field;
        committed.clear();
    }

    function type(text) {
        mouseClick(field);
        field.selectAll();
        for (const letter of text)
            keyClick(letter);
    }

    function test_enter_reports_what_was_typed_and_follows_the_value_again() {
        type("600");
        keyClick(Qt.Key_Return);
        compare(committed.count, 0, "the same text is no change");
        type("750");
        compare(committed.count, 0);
        keyClick(Qt.Key_Return);
        compare(committed.count, 1);
        compare(committed.signalArguments[0][0], "750");
        field.value = "745";
        compare(field.text, "745");
        compare(committed.count, 1);
    }

    function test_leaving_the_field_reports_once() {
        const elsewhere = createTemporaryObject(elsewhereComponent, testCase);
        type("750");
        mouseClick(elsewhere);
        compare(committed.count, 1);
    }

    function test_a_fresh_value_does_not_disturb_typing() {
        type("75");
        field.value = "601";
        compare(field.text, "75");
        keyClick(Qt.Key_Escape);
        compare(field.text, "601");
        compare(committed.count, 0);
        field.value = "602";
        compare(field.text, "602", "after Escape the field follows again");
    }

    function test_marks_edits_and_faults_and_keeps_the_unit_clear() {
        field.problem = "300 to 1200 rpm";
        compare(field.background.border.color, Theme.errorColor);
        compare(field.Accessible.description, "300 to 1200 rpm");
        const mark = field.background.children[0];
        verify(!mark.visible);
        field.pending = true;
        verify(mark.visible);
        verify(field.rightPadding > Theme.fieldPadding + Theme.gap);
    }
}
