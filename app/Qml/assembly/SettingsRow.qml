import QtQuick 2.15
import "../controls"
import "../theme"

// One variable of a comparison, or the titles above the columns.
//
// sheet        the SettingsTable, which knows the widths of the columns
// name, page   the variable; leftText, rightText, unit  its values
// differs      they are not the same
// canTick, ticked   there is a tick, and it is set
// outcome, tone     what became of it: words, and "good", "bad" or "quiet"
// current      the keyboard is here
Item {
    id: row

    property var sheet
    property bool isTitle: false
    property string name: ""
    property string page: ""
    property string leftText: ""
    property string rightText: ""
    property string unit: ""
    property bool differs: false
    property bool canTick: false
    property bool ticked: false
    property string outcome: ""
    property string tone: "quiet"
    property bool current: false
    readonly property color toneColor: tone === "good" ? Theme.successColor
                                     : tone === "bad" ? Theme.errorColor : Theme.quietTextColor
    readonly property color valueColor: differs ? Theme.textColor : Theme.quietTextColor

    signal clicked()
    signal tickWanted()

    implicitHeight: isTitle ? Theme.groupHeadHeight : Theme.rowHeight

    Accessible.role: isTitle ? Accessible.Heading : Accessible.Row
    Accessible.name: [name, page, leftText, rightText, unit, outcome].filter(text => text !== "").join(", ")
    Accessible.checkable: canTick
    Accessible.checked: ticked

    Rectangle {
        anchors.fill: parent
        visible: !row.isTitle
        radius: Theme.radiusSmall
        color: row.current || area.containsMouse ? Theme.controlColor : "transparent"

        FocusRing {
            anchors.margins: 0
            shown: row.current
        }
    }

    MouseArea {
        id: area

        anchors.fill: parent
        enabled: !row.isTitle
        hoverEnabled: true
        onClicked: {
            row.clicked();
            if (row.canTick && mouse.x < Theme.controlHeight)
                row.tickWanted();
        }
    }

    Row {
        anchors.fill: parent

        Item {
            width: Theme.controlHeight
            height: parent.height

            TickMark {
                objectName: row.objectName + "_tick"
                anchors.centerIn: parent
                visible: row.canTick
                on: row.ticked
                enabled: !row.sheet.locked
            }
        }
        Cell {
            width: row.sheet.nameWidth
            text: row.name
            note: row.page
        }
        Cell {
            width: row.sheet.valueWidth
            text: row.leftText
            color: row.valueColor
        }
        Cell {
            width: row.sheet.twoSides ? row.sheet.valueWidth : 0
            visible: width > 0
            text: row.rightText
            color: row.valueColor
        }
        Cell {
            width: Theme.unitWidth
            text: row.unit
            color: Theme.quietTextColor
        }
        Cell {
            width: parent.width - x
            text: row.outcome
            color: row.toneColor
        }
    }

    component Cell: Item {
        id: cell

        property alias text: words.text
        property alias color: words.color
        property string note: ""

        height: parent.height

        PlainText {
            id: words

            anchors.left: parent.left
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, parent.width - Theme.gap)
            font: row.isTitle ? Theme.captionBoldFont : Theme.bodyFont
            color: row.isTitle ? Theme.quietTextColor : Theme.textColor
            elide: Text.ElideRight
        }
        PlainText {
            anchors.left: words.right
            anchors.leftMargin: Theme.gap
            anchors.right: parent.right
            anchors.rightMargin: Theme.gap
            anchors.baseline: words.baseline
            visible: cell.note !== ""
            text: cell.note
            font: Theme.captionFont
            color: Theme.quietTextColor
            elide: Text.ElideRight
        }
    }
}
