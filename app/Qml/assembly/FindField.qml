import QtQuick 2.15
import "../theme"

// Where a search over all pages is typed.
//
// started()      the user wants to find something; passing by with Tab is not that
// firstWanted()  the keyboard is to go to what was found
// ended()        the search is over
DefaultTextField {
    id: field

    signal started()
    signal firstWanted()
    signal ended()

    function start() {
        forceActiveFocus(Qt.ShortcutFocusReason);
        selectAll();
        started();
    }

    implicitWidth: Theme.findFieldWidth
    placeholderText: qsTr("Find in all pages")
    unit: activeFocus || text.length > 0 ? "" : qsTr("Ctrl+F")
    label: qsTr("Find in the names, values and pages of all variables")

    onTextEdited: started()
    onPressed: started()
    onAccepted: {
        started();
        firstWanted();
    }
    Keys.onDownPressed: firstWanted()
    Keys.onEscapePressed: {
        event.accepted = true;
        ended();
    }
}
