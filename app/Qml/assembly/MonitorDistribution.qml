import QtQuick 2.15
import "../controls"
import "../theme"

// How the selected value is distributed over the time in view.
//
// distribution  see PlotItem; empty when no value is selected or none was read
// color         of the bars
Item {
    id: panel

    property var distribution: ({})
    property alias color: histogram.color
    readonly property bool filled: distribution.samples !== undefined

    Rectangle {
        anchors.fill: parent
        color: Theme.wellColor
        border.width: Theme.hairline
        border.color: Theme.outlineColor
    }

    Histogram {
        id: histogram

        objectName: "monitorHistogram"
        anchors.left: parent.left
        anchors.right: texts.left
        anchors.top: parent.top
        anchors.bottom: leastText.top
        anchors.margins: Theme.gap
        anchors.rightMargin: Theme.gapWide
        anchors.bottomMargin: 0
        visible: panel.filled
        values: panel.filled ? panel.distribution.counts : []
        title: panel.filled ? qsTr("Distribution of %1").arg(panel.distribution.name) : ""
    }

    // The ends alone: the bars are too narrow for a text each.
    PlainText {
        id: leastText

        anchors.left: histogram.left
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.gapTiny
        visible: panel.filled
        text: panel.filled ? panel.distribution.least : ""
        font: Theme.captionFont
        color: Theme.quietTextColor
    }
    PlainText {
        anchors.right: histogram.right
        anchors.baseline: leastText.baseline
        visible: panel.filled
        text: panel.filled ? panel.distribution.greatest : ""
        font: Theme.captionFont
        color: Theme.quietTextColor
    }

    Column {
        id: texts

        anchors.right: parent.right
        anchors.rightMargin: Theme.gap
        anchors.verticalCenter: parent.verticalCenter
        width: Theme.distributionTextWidth
        spacing: Theme.gapTiny
        visible: panel.filled

        PlainText {
            width: parent.width
            text: panel.filled ? panel.distribution.name : ""
            font: Theme.boldFont
            elide: Text.ElideRight
        }
        PlainText {
            objectName: "distributionText"
            width: parent.width
            text: panel.filled ? qsTr("over the time in view\nmean %1 %4\ndeviation %2 %4\n%3 samples")
                                 .arg(panel.distribution.mean).arg(panel.distribution.deviation)
                                 .arg(panel.distribution.samples).arg(panel.distribution.unit) : ""
            font: Theme.captionFont
            color: Theme.quietTextColor
            elide: Text.ElideRight
        }
    }

    EmptyNote {
        anchors.centerIn: parent
        visible: !panel.filled
        text: qsTr("Select a value to see how it is distributed.")
    }
}
