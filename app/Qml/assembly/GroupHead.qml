import QtQuick 2.15
import "../controls"
import "../theme"

// The caption of a group of rows, at the bottom of its room, over a line. Without a caption it is a
// gap.
Item {
    property alias text: caption.text

    visible: height > 0

    PlainText {
        id: caption

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: rule.top
        anchors.bottomMargin: Theme.gapTiny
        font: Theme.captionBoldFont
        color: Theme.quietTextColor
        elide: Text.ElideRight
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }

    Rectangle {
        id: rule

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.bottomMargin: caption.text.length > 0 ? Theme.gapTiny : Theme.gap
        height: Theme.hairline
        color: Theme.outlineColor
    }
}
