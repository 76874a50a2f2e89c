import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../theme"

// One look for every tooltip. `wanted` says that the pointer or the keyboard is on the control.
T.ToolTip {
    id: tip

    property bool wanted: false

    visible: wanted && text.length > 0
    delay: Theme.toolTipDelayMs
    x: 0
    y: parent ? parent.height + Theme.gapTiny : 0
    margins: Theme.gap
    padding: Theme.gap
    implicitWidth: Math.min(contentItem.implicitWidth, Theme.toolTipWidth) + leftPadding + rightPadding
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    font: Theme.captionFont
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent

    contentItem: PlainText {
        text: tip.text
        font: tip.font
        wrapMode: Text.Wrap
    }

    background: Rectangle {
        color: Theme.wellColor
        border.width: Theme.hairline
        border.color: Theme.outlineHoverColor
        radius: Theme.radiusSmall
    }
}
