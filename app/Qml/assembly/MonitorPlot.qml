import QtQuick 2.15
import Tevron 1.0
import "../controls"
import "../theme"

// The plot, and above it how much time is in view.
//
// source        a MonitorSource
// series        the PlotData that is drawn
// selected      the row that stands out
// distribution  of the selected values over the time in view, see PlotItem
FocusScope {
    id: panel

    property var source
    property var series
    property bool connected: false
    // No hardware version has been chosen yet.
    property bool versionMissing: false
    property alias selected: plot.selected
    readonly property bool showsFile: source.openFile !== ""
    property var distribution: ({})
    readonly property var lengths: [{ text: qsTr("1 min"), ms: 60000 }, { text: qsTr("5 min"), ms: 300000 },
                                    { text: qsTr("15 min"), ms: 900000 }, { text: qsTr("1 h"), ms: 3600000 }]

    Connections {
        target: panel.source
        function onOpened() { Qt.callLater(plot.showFile); }
    }

    Row {
        id: choices

        anchors.left: parent.left
        anchors.top: parent.top

        Repeater {
            model: panel.lengths

            DefaultToolButton {
                readonly property bool chosen: Math.round(plot.length) === modelData.ms

                objectName: "plotLength" + index
                text: modelData.text
                font: chosen ? Theme.boldFont : Theme.bodyFont
                padding: Theme.gap
                hint: qsTr("Show %1 (+ and - zoom, arrow keys pan)").arg(modelData.text)
                Accessible.selected: chosen
                onClicked: plot.ShowLength(modelData.ms)

                Rectangle {
                    anchors.left: parent.left
                    anchors.right: parent.right
                    anchors.bottom: parent.bottom
                    height: Theme.focusWidth
                    visible: parent.chosen
                    color: Theme.accentColor
                }
            }
        }
        DefaultToolButton {
            objectName: "plotAll"
            text: qsTr("All")
            padding: Theme.gap
            hint: qsTr("Show everything there is (Home)")
            onClicked: plot.ShowAll()
        }
    }

    DefaultToolButton {
        id: pause

        objectName: "plotPause"
        anchors.right: parent.right
        anchors.top: parent.top
        visible: !panel.showsFile
        text: plot.following ? qsTr("Pause") : qsTr("Go on")
        icon.source: plot.following ? "../icons/stop.svg" : "../icons/play.svg"
        hint: plot.following ? qsTr("Hold what is in view; reading goes on (Space)")
                             : qsTr("Back to the newest values (End)")
        onClicked: plot.Follow(!plot.following)
    }

    DefaultButton {
        objectName: "closeRecording"
        anchors.right: parent.right
        anchors.top: parent.top
        visible: panel.showsFile
        text: qsTr("Close recording")
        hint: qsTr("Back to the lidar's values")
        onClicked: panel.source.Close()
    }
    Rectangle {
        anchors.fill: plot
        anchors.margins: -Theme.hairline
        color: "transparent"
        border.width: Theme.hairline
        border.color: Theme.outlineColor
    }

    PlotItem {
        id: plot

        function takeDistribution() {
            if (visible)
                panel.distribution = DistributionOfSelected(10);
        }

        function showFile() {
            if (panel.showsFile)
                ShowAll();
        }

        objectName: "monitorPlot"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: choices.bottom
        anchors.topMargin: Theme.gap
        anchors.bottom: parent.bottom
        anchors.margins: Theme.hairline
        focus: true
        series: panel.series
        bridge: panel.showsFile ? panel.source.recordedBridge : panel.source.liveBridge
        look: ({ background: Theme.wellColor, grid: Theme.gridLineColor, text: Theme.quietTextColor,
                 box: Theme.panelColor, lines: Theme.lineColors, font: Theme.captionFont })
        onViewChanged: Qt.callLater(takeDistribution)

        Accessible.role: Accessible.Chart
        Accessible.name: qsTr("Values over time")
        Accessible.description: readout

        FocusRing { shown: plot.activeFocus }
    }

    EmptyNote {
        anchors.centerIn: plot
        width: plot.width - 4 * Theme.gapWide
        visible: panel.series.samples === 0
        text: panel.showsFile ? qsTr("This recording holds no numbers.")
            : panel.versionMissing ? qsTr("Choose the lidar's hardware version: it decides what is measured.")
            : panel.connected ? qsTr("Nothing has been read yet. Press Refresh, or switch Auto on.")
            : qsTr("Nothing has been read yet. Connect to a lidar, or open a recording.")
    }
}
