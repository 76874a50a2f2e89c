import QtQuick 2.15
import "../controls"
import "../theme"

// Vertical bars, one for each value, drawn from plain rectangles so that every renderer shows them.
//
// values   what is drawn; negative ones count as 0
// labels   a caption below each bar; may be shorter than `values`
// maximum  the value of a full bar; 0: the largest of the values
// unit     written behind the values
// color    of the bars
// title    name for assistive technology
Item {
    id: histogram

    property var values: []
    property var labels: []
    property real maximum: 0
    property string unit: ""
    property color color: Theme.accentColor
    property string title: ""
    readonly property real fullScale: maximum > 0 ? maximum
                                                  : values.reduce((most, value) => Math.max(most, value), 0)

    // The share of the height that a value takes, 0 to 1.
    function share(value) {
        return fullScale > 0 ? Math.min(1, Math.max(0, value / fullScale)) : 0;
    }

    implicitWidth: Theme.fieldWidth
    implicitHeight: Theme.fieldWidth / 2

    Accessible.role: Accessible.Graphic
    Accessible.name: title
    Accessible.description: values.join(", ")

    Row {
        id: bars

        anchors.fill: parent
        spacing: Theme.gapTiny

        Repeater {
            model: histogram.values

            Item {
                readonly property string caption: index < histogram.labels.length
                                                  ? histogram.labels[index] : ""

                objectName: "bar" + index
                width: (bars.width - (histogram.values.length - 1) * bars.spacing)
                       / histogram.values.length
                height: bars.height

                PlainText {
                    id: number

                    anchors.bottom: body.top
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: modelData + histogram.unit
                    font: Theme.captionFont
                }
                Rectangle {
                    id: body

                    objectName: "body"
                    anchors.bottom: captionText.top
                    anchors.horizontalCenter: parent.horizontalCenter
                    width: Math.min(parent.width, Theme.histogramBarWidth)
                    height: Math.max(Theme.hairline,
                                     (parent.height - captionText.height - number.height)
                                     * histogram.share(modelData))
                    radius: Theme.radiusSmall
                    color: histogram.color
                }
                PlainText {
                    id: captionText

                    anchors.bottom: parent.bottom
                    width: parent.width
                    height: histogram.labels.length > 0 ? implicitHeight : 0
                    horizontalAlignment: Text.AlignHCenter
                    text: parent.caption
                    font: Theme.captionFont
                    color: Theme.quietTextColor
                    elide: Text.ElideRight
                }
            }
        }
    }
}
