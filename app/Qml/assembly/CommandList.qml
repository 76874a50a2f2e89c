import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../controls"
import "../theme"

// A list of commands: the arrows move along it, Enter chooses.
ListView {
    id: list

    property string emptyText: ""

    implicitHeight: 5 * Theme.smallControlHeight
    clip: true
    activeFocusOnTab: count > 0
    boundsBehavior: Flickable.StopAtBounds
    keyNavigationEnabled: true
    T.ScrollBar.vertical: DefaultScrollBar {}

    Accessible.role: Accessible.Table

    Keys.onReturnPressed: if (currentItem) currentItem.recalled()
    Keys.onEnterPressed: if (currentItem) currentItem.recalled()

    EmptyNote {
        parent: list
        width: list.width
        y: Theme.gap
        visible: list.count === 0
        text: list.emptyText
        font: Theme.captionFont
    }

    FocusRing {
        parent: list
        anchors.margins: 0
        shown: list.activeFocus
    }
}
