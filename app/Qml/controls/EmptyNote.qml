import QtQuick 2.15
import "../theme"

// A quiet sentence where there is nothing else to show.
PlainText {
    color: Theme.quietTextColor
    horizontalAlignment: Text.AlignHCenter
    wrapMode: Text.Wrap
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
