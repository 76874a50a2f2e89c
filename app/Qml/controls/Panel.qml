import QtQuick 2.15
import "../theme"

// A raised surface that groups what belongs together. Children go inside its padding.
Rectangle {
    id: panel

    default property alias content: inner.data
    property int padding: Theme.gapWide

    implicitWidth: inner.childrenRect.width + 2 * padding
    implicitHeight: inner.childrenRect.height + 2 * padding
    radius: Theme.radius
    color: Theme.panelColor
    border.width: Theme.hairline
    border.color: Theme.outlineColor

    Item {
        id: inner

        anchors.fill: parent
        anchors.margins: panel.padding
    }
}
