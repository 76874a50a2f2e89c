import QtQuick 2.15
import "../controls"
import "../theme"

// One row of the monitor's values: a tick in the colour of its line, a piece of that line, the name
// and the numbers. The properties that are required are the roles of a PlotData.
Item {
    id: value

    required property int index
    required property string name
    required property string unit
    required property bool shown
    required property string now
    required property string least
    required property string greatest
    required property bool fresh
    required property var dashes
    property bool stale: false
    property bool current: false
    property bool hasKeyboard: false
    readonly property color lineColor: Theme.lineColors[Math.max(0, index) % Theme.lineColors.length]

    signal showRequested(bool on)
    signal chosen()

    function toggle() {
        showRequested(!shown);
    }

    implicitHeight: Theme.smallControlHeight

    Accessible.role: Accessible.CheckBox
    Accessible.name: name
    Accessible.checked: shown
    Accessible.description: qsTr("%1 %2, least %3, greatest %4").arg(now || Theme.unreadText).arg(unit)
                                                              .arg(least).arg(greatest)
    Accessible.onToggleAction: toggle()

    component Number: PlainText {
        property string number: ""

        height: value.height
        text: number || Theme.unreadText
        font: Theme.captionFont
        color: Theme.quietTextColor
        horizontalAlignment: Text.AlignRight
        verticalAlignment: Text.AlignVCenter
        // A counter of ten digits gets smaller before it is cut off.
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: 8
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusSmall
        color: value.current ? Theme.panelColor : "transparent"
    }
    FocusRing {
        anchors.margins: 0
        radius: Theme.radiusSmall
        shown: value.hasKeyboard
    }
    TapHandler { onTapped: value.chosen() }

    Rectangle {
        id: tick

        objectName: "monitorTick" + value.index
        anchors.left: parent.left
        anchors.leftMargin: Theme.gapTiny
        anchors.verticalCenter: parent.verticalCenter
        width: 3 * Theme.grid
        height: width
        radius: Theme.radiusSmall
        color: value.shown ? value.lineColor : "transparent"
        border.width: Theme.hairline
        border.color: value.shown ? value.lineColor : Theme.outlineHoverColor

        TapHandler {
            margin: Theme.gapTiny
            gesturePolicy: TapHandler.ReleaseWithinBounds
            onTapped: value.toggle()
        }
    }

    // A piece of the line, twice: the dashes tell it apart where colours do not.
    Item {
        id: sample

        anchors.left: tick.right
        anchors.leftMargin: Theme.gap
        anchors.verticalCenter: parent.verticalCenter
        width: 5 * Theme.grid
        height: Theme.radiusSmall
        clip: true
        opacity: value.shown ? 1 : 0.35

        Repeater {
            model: value.pieces(sample.width)

            Rectangle {
                x: modelData.x
                width: modelData.width
                height: sample.height
                color: value.lineColor
            }
        }
    }

    function pieces(length) {
        if (dashes.length === 0)
            return [{ x: 0, width: length }];
        const found = [];
        for (let x = 0, i = 0; x < length; x += dashes[i], i = (i + 1) % dashes.length) {
            if (i % 2 === 0)
                found.push({ x: x, width: Math.min(dashes[i], length - x) });
        }
        return found;
    }

    PlainText {
        id: nameText

        anchors.left: sample.right
        anchors.leftMargin: Theme.gap
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(implicitWidth, numbers.x - x - unitText.width - Theme.gapTiny)
        text: value.name
        font: Theme.captionFont
        color: value.shown ? Theme.textColor : Theme.quietTextColor
        elide: Text.ElideRight
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: 9

        HoverHandler { id: nameHover }
        DefaultToolTip {
            wanted: nameHover.hovered && nameText.truncated
            text: value.name
        }
    }
    PlainText {
        id: unitText

        anchors.left: nameText.right
        anchors.leftMargin: Theme.gapTiny
        anchors.baseline: nameText.baseline
        text: value.unit
        font: Theme.captionFont
        color: Theme.quietTextColor
    }

    Row {
        id: numbers

        anchors.right: parent.right

        Number {
            objectName: "monitorNow" + value.index
            width: Theme.monitorNowWidth
            number: value.now
            font: Theme.bodyFont
            color: value.stale || !value.fresh ? Theme.disabledTextColor : Theme.textColor
        }
        Number {
            width: Theme.monitorRangeWidth
            number: value.least
        }
        Number {
            width: Theme.monitorRangeWidth
            number: value.greatest
        }
    }
}
