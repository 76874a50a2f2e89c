import QtQuick 2.15
import Tevron 1.0

// One firmware upgrade, from the choice of a file to its outcome. The panels that show it come and
// go with the pages; what is chosen and what came of it stay here.
//
// manager      the object that upgrades
// modelName    the chosen model; another one ends what was known
// file         the chosen file, an UpgradeChoice
// watch        the upgrade that runs or the last one, an UpgradeWatch
Item {
    id: control

    property var manager
    property string modelName: ""
    readonly property UpgradeChoice file: UpgradeChoice {}
    property var watch: UpgradeWatch { manager: control.manager }

    readonly property bool chosen: file.url.toString().length > 0
    readonly property bool running: watch.running
    // The file is on its way, and the connection must be left alone.
    readonly property bool sending: manager.IsUpgrading
    // The lidar is away; the program tries to reach it again.
    readonly property bool waiting: running && !sending && !manager.IsConnected
    // The last outcome is shown until another file is chosen.
    property bool outcomePutAway: false
    readonly property string outcome: running || outcomePutAway ? "" : watch.outcome

    // Why an upgrade cannot be started now; empty when it can.
    readonly property string obstacle: {
        if (running)
            return qsTr("An upgrade is running.");
        if (!manager.IsConnected)
            return qsTr("Connect to the lidar first: say at the top how it is reached and press Connect.");
        if (manager.IsDownloadLog || manager.isGetPBLVersion)
            return qsTr("Please wait until the lidar has been read.");
        return "";
    }

    // What is not right with the file yet; empty when it can be sent.
    readonly property string missing: !chosen ? qsTr("Choose an upgrade package first.")
        : file.problem.length > 0 ? qsTr("This file cannot be sent; choose another one.") : ""

    // A dropped or attached file. The end of its name is judged by its URL, as it came.
    function choose(urls) {
        if (running || urls.length === 0)
            return;
        outcomePutAway = true;
        file.Choose(urls[0], watch.takesPackages);
        if (file.misnamed) {
            console.log("Rejected, need a *.patch file");
            manager.setErrorMsg(file.problem);
        }
    }

    // Starts with the chosen file, if it is still as good as it was; the levels are the place of
    // the page's row.
    function start(level1, level2, level3) {
        if (obstacle.length > 0 || !chosen || !file.LookAgain())
            return;
        outcomePutAway = false;
        if (manager.connectType === 0)
            manager.UpgradeLidar(file.url, level1, level2, level3);
        else if (watch.takesPackages)
            manager.KivaUpgradeLidar(file.url);
        else
            manager.LumoUpgradeLidar(file.url);
    }

    function stopWaiting() {
        manager.Stop();
    }

    // What was sent once is not sent again by a slip of the hand.
    onRunningChanged: {
        if (running)
            outcomePutAway = false;
        else if (!watch.failed)
            file.Clear();
    }
    onModelNameChanged: {
        outcomePutAway = true;
        file.Clear();
    }
}
