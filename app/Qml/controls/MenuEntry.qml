import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../theme"

// One entry of a drop-down list or menu.
T.ItemDelegate {
    id: entry

    implicitWidth: contentItem.implicitWidth + leftPadding + rightPadding
    implicitHeight: Theme.controlHeight
    leftPadding: Theme.gap
    rightPadding: Theme.gap
    hoverEnabled: true
    highlighted: hovered || visualFocus
    font: Theme.bodyFont

    Accessible.name: text

    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: PlainText {
        text: entry.text
        font: entry.font
        color: entry.highlighted ? Theme.accentTextColor : Theme.textColor
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideMiddle
    }
    background: Rectangle {
        radius: Theme.radiusSmall
        color: entry.highlighted ? Theme.accentColor : "transparent"
    }
}
