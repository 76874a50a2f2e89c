import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../theme"

// What is left of a folded area at the side of the window: its name and key, written upwards down.
// A click opens the area.
T.AbstractButton {
    id: strip

    property string key: ""

    implicitWidth: Theme.stripWidth
    hoverEnabled: true
    focusPolicy: Qt.TabFocus

    Accessible.role: Accessible.Button
    Accessible.name: qsTr("Open: %1 (%2)").arg(text).arg(key)

    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    background: Rectangle {
        color: strip.hovered ? Theme.controlColor : Theme.trenchColor

        Rectangle {
            width: Theme.hairline
            height: parent.height
            color: Theme.outlineColor
        }
        FocusRing {
            anchors.margins: 0
            shown: strip.visualFocus
        }
    }

    contentItem: Item {
        Row {
            x: (parent.width + height) / 2
            y: Theme.gapWide
            transformOrigin: Item.TopLeft
            rotation: 90
            spacing: Theme.gap

            PlainText {
                text: strip.text
                color: strip.hovered ? Theme.textColor : Theme.quietTextColor
            }
            PlainText {
                anchors.verticalCenter: parent.verticalCenter
                text: strip.key
                font: Theme.captionFont
                color: Theme.quietTextColor
            }
        }
    }
}
