import QtQuick 2.15
import Tevron 1.0

// The monitor of the page that holds one. It is made when that page comes into view first; then it
// keeps what it shows, and goes on, while other pages are in view.
//
// rows    the page's, a PageRows, with the row that says what hardware the monitor is made for
// source  the readings, a MonitorSource
// failed(reason)  a recording could not be written
Item {
    id: monitor

    property var manager
    property var rows
    readonly property alias source: monitorSource
    readonly property int kindMonitor: 7
    property string reportedHardware: ""

    signal failed(string reason)

    // What the lidar says now.
    function takeHardware() {
        const leaf = rows.LeafOfKind(kindMonitor);
        reportedHardware = leaf.current_val === undefined || leaf.state === "unread" ? ""
                                                                                  : leaf.current_val;
    }

    onVisibleChanged: if (visible) loader.active = true

    Connections {
        target: monitor.rows
        function onTaken() { monitor.takeHardware(); }
    }

    MonitorSource {
        id: monitorSource

        objectName: "monitorSource"
        manager: monitor.manager
        onFailed: monitor.failed(reason)
    }

    Loader {
        id: loader

        anchors.fill: parent
        active: false
        sourceComponent: MonitorEditor {
            manager: monitor.manager
            source: monitorSource
            reportedHardware: monitor.reportedHardware
        }
    }
}
