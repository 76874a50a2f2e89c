import QtQuick 2.15
import "../theme"

// A text of the screens. Much of what they show comes from a device or a table, so that no text is
// ever taken for markup.
Text {
    textFormat: Text.PlainText
    font: Theme.bodyFont
    color: Theme.textColor
}
