import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../theme"

// Bytes of a reply: they can be selected and copied, not changed.
//
// layOut(columns)   a function that gives the bytes as lines of at most so many characters
FocusScope {
    id: reply

    property string caption: ""
    property string text: ""
    property var layOut: columns => text

    Rectangle {
        anchors.fill: parent
        radius: Theme.radius
        color: Theme.windowColor
        border.width: Theme.hairline
        border.color: Theme.outlineColor

        FocusRing { shown: edit.activeFocus }
    }

    TextMetrics {
        id: digit

        font: Theme.codeFont
        text: "0"
    }

    Flickable {
        id: flick

        anchors.fill: parent
        anchors.margins: Theme.gapTiny
        anchors.leftMargin: Theme.gap
        clip: true
        contentWidth: width
        contentHeight: edit.height
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: DefaultScrollBar {}

        TextEdit {
            id: edit

            width: flick.width
            focus: true
            activeFocusOnTab: true
            readOnly: true
            selectByMouse: true
            text: reply.layOut(Math.floor(width / digit.advanceWidth))
            font: Theme.codeFont
            textFormat: TextEdit.PlainText
            color: Theme.textColor
            selectionColor: Theme.selectionColor
            selectedTextColor: Theme.textColor
            wrapMode: TextEdit.Wrap
            Accessible.name: reply.caption
        }
    }

    PlainText {
        anchors.left: parent.left
        anchors.leftMargin: Theme.gap
        anchors.top: parent.top
        anchors.topMargin: Theme.gapTiny
        visible: reply.text.length === 0
        text: reply.caption
        font: Theme.captionFont
        color: Theme.quietTextColor
    }
}
