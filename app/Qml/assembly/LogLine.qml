import QtQuick 2.15
import QtQuick.Layouts 1.15
import QtQuick.Templates 2.15 as T
import "../controls"
import "../theme"

// The folded log: its last message, and how many warnings and errors nobody has looked at. A click
// opens the log.
//
// lines    the LogLines of the log
// color    that of the last message's level
T.AbstractButton {
    id: line

    property var lines: null
    property color ink: Theme.textColor

    // "1 error, 2 warnings", or nothing.
    readonly property string unseen: [
        counted(lines.unseenErrors, qsTr("%1 error"), qsTr("%1 errors")),
        counted(lines.unseenWarnings, qsTr("%1 warning"), qsTr("%1 warnings"))
    ].filter(text => text !== "").join(", ")

    function counted(number, one, many) {
        return number === 0 ? "" : (number === 1 ? one : many).arg(number);
    }

    implicitHeight: Theme.stripWidth
    leftPadding: Theme.gapWide
    rightPadding: Theme.gapWide
    hoverEnabled: true
    focusPolicy: Qt.TabFocus

    Accessible.role: Accessible.Button
    Accessible.name: qsTr("Open: Log (F12)")
    Accessible.description: [lines.lastText, unseen].filter(text => text !== "").join(", ")

    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    background: Rectangle {
        color: line.hovered ? Theme.controlColor : Theme.wellColor

        FocusRing {
            anchors.margins: 0
            shown: line.visualFocus
        }
    }

    contentItem: RowLayout {
        spacing: Theme.gapWide

        Icon {
            size: Theme.lampSize
            source: "../icons/chevron-right.svg"
            color: Theme.quietTextColor
        }
        PlainText {
            visible: text !== ""
            text: line.lines.lastTime
            font: Theme.captionFont
            color: Theme.quietTextColor
        }
        PlainText {
            objectName: "logLineText"
            Layout.fillWidth: true
            text: line.lines.lastText.replace(/\s+/g, " ")
            font: Theme.captionFont
            color: line.ink
            elide: Text.ElideRight
        }
        Rectangle {
            visible: line.unseen !== ""
            implicitWidth: badge.implicitWidth + 2 * Theme.gap
            implicitHeight: badge.implicitHeight + Theme.gapTiny
            radius: height / 2
            color: "transparent"
            border.width: Theme.hairline
            border.color: badge.color

            PlainText {
                id: badge

                objectName: "logLineUnseen"
                anchors.centerIn: parent
                text: line.unseen
                font: Theme.captionFont
                color: line.lines.unseenErrors > 0 ? Theme.errorColor : Theme.warningColor
            }
        }
        PlainText {
            text: qsTr("Log")
            font: Theme.captionFont
        }
        PlainText {
            Layout.leftMargin: -Theme.gap
            text: "F12"
            font: Theme.captionFont
            color: Theme.quietTextColor
        }
    }
}
