import QtQuick 2.15
import QtQuick.Window 2.15

// Gives the keyboard back to a screen after a popup. One that closes leaves it with the root of the
// scene, which does nothing with it; the screen still knows the item that had it before.
Item {
    id: keeper

    property Item screen
    readonly property Item holder: Window.activeFocusItem

    function giveBack() {
        if (screen && holder === Window.contentItem)
            screen.focus = true;
    }

    // Later, when what closes the popup, or opens the next one, has come to its end.
    onHolderChanged: Qt.callLater(giveBack)
}
