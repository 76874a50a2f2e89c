import QtQuick 2.15
import Tevron 1.0
import "../controls"

// What the Connect button does, and what follows from a connection: the link check, the comparison
// of the lidar's numbers with the chosen model, and the first reading; and what follows from a
// restart: the lidar is waited for.
//
// manager      the object that connects and knows whether a lidar is connected
// modelName    the chosen model
// tab          the page that is shown, which is read again after connecting
// upgrading    an upgrade runs, in which the manager connects by itself when the lidar is back
// applying     the settings of a file are being written, which is not to be cut
// watch        how it stands with the connection, a LinkWatch
// connecting   an attempt runs
// nextAddressTold(address)  network settings were taken: the lidar is reached there next
Item {
    id: link

    property var manager
    property string modelName: ""
    property int tab: 0
    property bool upgrading: false
    property bool applying: false
    property LinkWatch watch: LinkWatch {
        manager: link.manager
        onNextAddressTold: link.nextAddressTold(address)
    }
    readonly property bool connecting: watch.connecting

    signal nextAddressTold(string address)
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
            watch.Look();
        } else if (manager.IsUpgrading) {
            refused("Disconnect REJECTED. Lidar is upgrading.");
        } else if (applying) {
            refused(qsTr("The settings of a file are being written to the lidar. Wait until that has ended, or cancel it first."));
        } else {
            manager.Stop();
            linkCheck.stop();
        }
    }

    // The lidar may have gone while the user was asked.
    function disconnect() {
        if (manager.IsConnected)
            toggle();
    }

    // Ends an attempt, or the wait for a lidar that restarts.
    function cancel() {
        if (manager.GetIsConnectingLidar())
            manager.Stop();
        watch.Look();
    }

    // An upgrade that runs sees to the connection itself; a serial line stays.
    function restart() {
        let result = 0;
        LongCalls.Run(() => result = manager.Restart());
        if (result === 0 && manager.connectType === networkType && !upgrading)
            watch.AwaitLidar();
    }

    function connectTo(address) {
        watch.AwaitLidarAt(address);
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
        if (!manager.IsConnected || manager.connectType !== networkType) {
            linkCheck.stop();
            turns.clear();
            return;
        }
        turns.clear();
        read(0);
        checkNumbers();
        turns.add(() => read(tab));
        linkCheck.start();
    }

    function read(page) {
        LongCalls.Run(() => manager.GetLidarModuleInfo(page));
    }

    Shortcut { sequence: "Escape"; enabled: link.connecting; onActivated: link.cancel() }

    Connections {
        target: link.manager
        function onIsConnectedChanged() { link.onLink(); }
    }

    Turns { id: turns }

    Timer {
        id: linkCheck

        objectName: "linkCheckTimer"
        interval: 5000
        repeat: true
        onTriggered: {
            if (link.manager.IsUpgrading || link.manager.IsDownloadLog || link.applying)
                return;
            let alive = true;
            LongCalls.Run(() => alive = link.manager.CheckLidarConnection());
            if (!alive) {
                stop();
                link.toggle();
            }
        }
    }
}
