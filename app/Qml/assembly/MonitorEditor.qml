import QtQuick 2.15
import "../controls"
import "../theme"

// The monitor of a model, over its whole page: the values beside a plot of them, recording, and
// recordings that were made before.
//
// source            a MonitorSource
// reportedHardware  the hardware version that the lidar reports; empty while it has not
FocusScope {
    id: editor

    property var manager
    property var source
    property string reportedHardware: ""
    readonly property bool showsFile: source.openFile !== ""
    readonly property var series: showsFile ? source.recorded : source.live
    readonly property bool hasFaults: showsFile && source.faults.length > 0
    // The lidar reports another hardware version than the chosen one, and there is a table for it.
    readonly property bool offered: !showsFile && manager.IsConnected
                                    && manager.monitorHwVersionList.indexOf(reportedHardware) >= 0
                                    && reportedHardware !== manager.currentMonitorHwVersion
    // Which recording is in view, or what stands in the way of readings or is odd about them.
    readonly property string news: {
        if (showsFile)
            return source.openFile + qsTr(" · %1 samples").arg(series.samples)
                   + (hasFaults ? qsTr(" · lines left out") : "");
        if (!manager.IsConnected)
            return source.live.samples > 0 ? qsTr("Not connected: these are the last readings.") : "";
        if (manager.IsUpgrading || manager.IsDownloadLog)
            return qsTr("No readings while a file is transferred.");
        return reportedHardware !== "" && reportedHardware !== manager.currentMonitorHwVersion
               ? qsTr("The lidar reports hardware %1.").arg(reportedHardware) : "";
    }

    MonitorHead {
        id: head

        anchors.left: parent.left
        anchors.top: parent.top
        width: values.width
        manager: editor.manager
        focus: true
    }

    DefaultButton {
        id: use

        objectName: "monitorUseReported"
        anchors.right: head.right
        anchors.top: head.bottom
        anchors.topMargin: visible ? Theme.gap : 0
        height: visible ? implicitHeight : 0
        visible: editor.offered
        emphasised: editor.manager.currentMonitorHwVersion === ""
        text: qsTr("Use %1").arg(editor.reportedHardware)
        hint: qsTr("Choose the hardware version that the lidar reports")
        onClicked: {
            head.forceActiveFocus();
            editor.manager.selectMonitorHwVersion(editor.reportedHardware);
        }
    }

    PlainText {
        id: newsText

        objectName: "monitorNews"
        anchors.left: parent.left
        anchors.top: head.bottom
        anchors.topMargin: text.length > 0 ? Theme.gapTiny : 0
        width: values.width - (use.visible ? use.width + Theme.gap : 0)
        height: use.visible ? use.height + Theme.gapTiny : text.length > 0 ? implicitHeight : 0
        verticalAlignment: Text.AlignVCenter
        text: editor.news
        font: Theme.captionFont
        color: (editor.showsFile && !editor.hasFaults)
               || editor.manager.currentMonitorHwVersion === "" ? Theme.quietTextColor : Theme.warningColor
        elide: Text.ElideMiddle
        Accessible.role: Accessible.StaticText
        Accessible.name: text
        Accessible.description: editor.source.faults.join("\n")

        HoverHandler { id: newsHover }
        DefaultToolTip {
            wanted: newsHover.hovered
            text: editor.showsFile ? [editor.source.openFile].concat(editor.source.faults).join("\n")
                                   : ""
        }
    }

    MonitorValues {
        id: values

        anchors.left: parent.left
        anchors.top: newsText.bottom
        anchors.topMargin: Theme.gap
        anchors.bottom: record.top
        anchors.bottomMargin: Theme.gap
        width: Theme.monitorPanelWidth
        series: editor.series
        stale: !editor.showsFile && !editor.manager.IsConnected
        ofFile: editor.showsFile
        selected: plot.selected
        onSelectRequested: plot.selected = index
    }

    MonitorRecord {
        id: record

        objectName: "monitorRecord"
        anchors.left: parent.left
        anchors.bottom: parent.bottom
        width: values.width
        manager: editor.manager
        source: editor.source
    }

    MonitorPlot {
        id: plot

        anchors.left: values.right
        anchors.leftMargin: Theme.gapWide
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: distribution.top
        anchors.bottomMargin: Theme.gap
        source: editor.source
        series: editor.series
        connected: editor.manager.IsConnected
        versionMissing: editor.manager.currentMonitorHwVersion === ""
    }

    MonitorDistribution {
        id: distribution

        anchors.left: plot.left
        anchors.right: plot.right
        anchors.bottom: parent.bottom
        height: Theme.distributionHeight
        distribution: plot.distribution
        color: Theme.lineColors[Math.max(0, plot.selected) % Theme.lineColors.length]
    }
}
