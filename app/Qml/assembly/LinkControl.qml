import QtQuick 2.15

// What the Connect button does, and what follows from a connection: the waiting indicator, the link
// check, the comparison of the lidar's numbers with the chosen model, and the first reading.
//
// manager      the object that connects and knows whether a lidar is connected
// modelName    the chosen model
// tab          the page that is shown, which is read again after connecting
// upgrading    an upgrade runs, in which the manager connects by itself when the lidar is back
// connecting   an attempt runs
Item {
    id: link

    property var manager
    property string modelName: ""
    property int tab: 0
    property bool upgrading: false
    property bool connecting: false

    signal refused(string reason)
    signal warned(string text)

    readonly property int networkType: 0
    readonly property string mismatchText: "WARNING: Please note that a mismatch is detected between the lidar model on the connection and the one selected. " + qsTr("The values may be shown or written wrongly: disconnect and choose the model that matches the lidar, or go on with great caution.")
    readonly property string numberText: "WARNING: There is a problem with the PN or SN code of the device you are connecting to."
    readonly property string emptyText: "WARNING: Empty PN or SN code detected. Please check your device."

    function toggle() {
        if (manager.GetIsConnectingLidar()) {
            refused("Is Connecting Lidar... Please wait.");
        } else if (!manager.IsConnected) {
            manager.ConnectLidar();
            connecting = true;
        } else if (manager.IsUpgrading) {
            refused("Disconnect REJECTED. Lidar is upgrading.");
        } else {
            manager.Stop();
            linkCheck.stop();
        }
    }

    // Compares part and serial number with the model's name and its first two letters. The six
    // letters "xxxxxx" are meant, although an unread number reads "xxxxxxxx": such a number counts
    // as one that does not match, and the last warning is never reached.
    function checkNumbers() {
        const pn = manager.getLidarPN();
        const sn = manager.getLidarSN();
        const family = modelName.substring(0, 2);
        const names = number => number.indexOf(modelName) >= 0 || number.indexOf(family) >= 0;
        if (pn !== "" && sn !== "") {
            if (!names(pn) && !names(sn))
                warned(mismatchText);
        } else if (pn !== "xxxxxx" || sn !== "xxxxxx") {
            warned(numberText);
        } else {
            warned(emptyText);
        }
    }

    function onLink() {
        connecting = false;
        if (!manager.IsConnected || manager.connectType !== networkType) {
            linkCheck.stop();
            return;
        }
        manager.GetLidarModuleInfo(0);
        checkNumbers();
        manager.GetLidarModuleInfo(tab);
        linkCheck.start();
    }

    Connections {
        target: link.manager
        function onIsConnectedChanged() { link.onLink(); }
    }

    Timer {
        id: linkCheck

        objectName: "linkCheckTimer"
        interval: 5000
        repeat: true
        onTriggered: {
            if (link.manager.IsUpgrading || link.manager.IsDownloadLog)
                return;
            if (!link.manager.CheckLidarConnection()) {
                stop();
                link.toggle();
            }
        }
    }

    // A failed attempt has no signal of its own, and neither has one of an upgrade; they are looked
    // for only while there may be one.
    Timer {
        interval: 100
        repeat: true
        running: link.connecting || link.upgrading
        onTriggered: link.connecting = link.manager.GetIsConnectingLidar()
    }
}
