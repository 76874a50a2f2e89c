import QtQuick 2.15
import "../controls"
import "../theme"

// A caption and, beside it, the control that belongs to it.
Row {
    id: line

    property string caption: ""

    spacing: Theme.gap

    PlainText {
        height: Theme.controlHeight
        width: Theme.serialCaptionWidth
        verticalAlignment: Text.AlignVCenter
        text: line.caption
        color: line.enabled ? Theme.textColor : Theme.disabledTextColor
        elide: Text.ElideRight
    }
}
