import QtQuick 2.15
import QtQuick.Layouts 1.15
import "../controls"
import "../theme"

// One group of the serial screen: a heading, its controls, and a plain sentence in their place when
// the operations of the group are not possible now.
Panel {
    id: section

    property string title: ""
    // Why the group cannot be used; empty when it can.
    property string obstacle: ""
    default property alias controls: column.data

    Layout.fillWidth: true
    Layout.fillHeight: true
    Layout.preferredWidth: Theme.serialPanelWidth
    implicitHeight: body.implicitHeight + 2 * padding

    content: Column {
        id: body

        width: parent.width
        spacing: Theme.gap

        SectionTitle {
            width: parent.width
            text: section.title
            description: section.obstacle
        }

        Column {
            id: column

            width: parent.width
            spacing: Theme.gap
            enabled: section.obstacle.length === 0
        }
    }
}
