import QtQuick 2.15
import "../theme"

// A control with its caption above it.
Column {
    id: labelled

    property string caption: ""

    spacing: 0

    PlainText {
        text: labelled.caption
        font: Theme.captionFont
        color: Theme.quietTextColor
    }
}
