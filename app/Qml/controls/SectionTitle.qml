import QtQuick 2.15
import "../theme"

// The heading of a group of controls, with an optional line that explains it.
Column {
    id: section

    property string text: ""
    property string description: ""

    spacing: Theme.gapTiny

    PlainText {
        width: parent.width
        text: section.text
        font: Theme.titleFont
        elide: Text.ElideRight
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }

    PlainText {
        width: parent.width
        visible: text.length > 0
        text: section.description
        font: Theme.captionFont
        color: Theme.quietTextColor
        wrapMode: Text.Wrap
    }
}
