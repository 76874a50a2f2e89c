import QtQuick 2.15
import QtTest 1.15
import TevronTest 1.0
import "qrc:/Qml/assembly"

// The firmware panel on its page, from the choice of a file to the outcome.
TestCase {
    id: test

    property var page
    property var manager
    property var control
    property var watch
    readonly property string rejected: "Upgrade package rejected: it has to be a .patch file"

    name: "Upgrade"
    when: windowShown
    width: 860
    height: 480
    visible: true

    Component { id: managerComponent; FakeManager {} }
    Component {
        id: pageComponent

        PageView {
            id: view

            anchors.fill: parent
            title: "Upgrade"
            upgrade: UpgradeControl {
                manager: view.manager
                modelName: "Orca"
                watch: QtObject {
                    property bool running: false
                    property bool failed: false
                    property bool takesPackages: false
                    property string outcome: ""
                    property var steps: []
                    property string fileName: ""
                    property string serialNumber: "Orca26110042"
                    property string runningVersion: "2026-10-18 v2.7.1.0"
                    property int sentKib: 0
                    property int totalKib: 0
                    property real kibPerSecond: 0
                    property int secondsLeft: -1
                }
            }
        }
    }

    function init() {
        manager = managerComponent.createObject(test);
        manager.myMap = [[[{ "page_description": "About the page" }]]];
        manager.level2List = [[["Firmware", 4, 0, 0, 0]]];
        page = createTemporaryObject(pageComponent, test, { manager: manager });
        control = page.upgrade;
        watch = control.watch;
        tryVerify(() => shown("attachFile"));
        manager.calls = [];
    }

    function find(name) { return findChild(page, name); }
    function shown(name) { return find(name) !== null && find(name).visible; }
    function tell(news) { Object.keys(news).forEach(key => watch[key] = news[key]); }

    function test_a_file_is_looked_at_before_it_can_be_sent_data() {
        const named = [["setErrorMsg", rejected]];
        return [{ tag: "good", file: "orca ü #1 %41.patch", bytes: 700000, note: "683.6 KiB" },
                { tag: "letter case", file: "a.PATCH", bytes: 1, note: rejected, calls: named },
                { tag: "ending", file: "a.patch.zip", bytes: 1, note: rejected, calls: named },
                { tag: "empty", file: "a.patch", bytes: 0, note: "The file is empty." },
                { tag: "large", file: "a.patch", bytes: 67108865, note: "larger than 64 MiB" },
                { tag: "folder", file: "a.patch/", bytes: -1, note: rejected, calls: named },
                { tag: "vanished", file: "a.patch", bytes: -1, note: "there is no such file" }];
    }

    function test_a_file_is_looked_at_before_it_can_be_sent(data) {
        const good = data.tag === "good";
        verify(!find("startUpgrade").enabled);
        const url = manager.MakeFile(data.file, data.bytes);
        control.choose([url]);
        verify(find("upgradeFileNote").text.indexOf(data.note) >= 0, find("upgradeFileNote").text);
        compare(find("startUpgrade").enabled, good);
        compare(manager.calls, data.calls || []);
        if (!good)
            return;
        compare(find("upgradeFileName").text, data.file);
        manager["IsConnected"] = false;
        verify(!find("startUpgrade").enabled);
        verify(find("upgradeAdvice").text.startsWith("Connect to the lidar first"));
        manager["IsConnected"] = true;
        find("startUpgrade").forceActiveFocus();
        keyClick(Qt.Key_Return);
        compare(manager.calls, [["UpgradeLidar", url, 0, 0, 0]]);
        manager.MakeFile(data.file, -1);
        keyClick(Qt.Key_Return);
        compare(manager.calls.length, 1, "a file that has vanished since is not sent");
    }

    // What is on the panel, and what is not.
    function test_the_panel_tells_how_the_upgrade_stands_data() {
        const steps = ["Transfer", "Restart"].map(name => ({ name: name, state: "running" }));
        const run = { running: true, fileName: "a.patch", steps: steps, totalKib: 2048 };
        return [{ tag: "idle", watch: { running: false }, on: ["startUpgrade"], off: ["stopWaiting", "upgradeBar"] },
                { tag: "sending", watch: Object.assign({ sentKib: 512, kibPerSecond: 51.2,
                                                         secondsLeft: 31 }, run), busy: true,
                  on: ["upgradeBar", "upgradePace"], off: ["startUpgrade", "stopWaiting"],
                  texts: { upgradeAmount: "512 of 2048 KiB sent",
                           upgradePace: "51 KiB/s  ·  about 35 s left" } },
                { tag: "waiting", watch: run, away: true, on: ["stopWaiting"], off: ["startUpgrade"] },
                { tag: "failed", watch: { running: false, failed: true, outcome: "Piece 7 was refused." },
                  on: ["upgradeOutcome", "startUpgrade"], off: ["upgradeBar"],
                  texts: { upgradeOutcome: "Piece 7 was refused." } }];
    }

    function test_the_panel_tells_how_the_upgrade_stands(data) {
        manager["IsUpgrading"] = data.busy === true;
        manager["IsConnected"] = data.away !== true;
        tell({ running: true });
        tell(data.watch);
        verify(data.on.every(shown), "shown: " + data.on.filter(shown));
        verify(!data.off.some(shown), "shown: " + data.off.filter(shown));
        verify(!shown("saveButton"));
        for (const name of Object.keys(data.texts || {}))
            compare(find(name).text, data.texts[name]);
        if (shown("stopWaiting")) {
            mouseClick(find("stopWaiting"));
            compare(manager.calls, [["Stop"]]);
        }
    }

    function test_the_outcome_stays_until_another_file_is_chosen() {
        control.choose([manager.MakeFile("a.patch", 5)]);
        tell({ running: true });
        tell({ running: false, outcome: "Upgrade complete." });
        compare(find("upgradeOutcome").text, "Upgrade complete.");
        verify(!find("startUpgrade").enabled, "the same file is not sent twice by a slip");
        control.choose([manager.MakeFile("b.patch", 5)]);
        verify(!shown("upgradeOutcome"));
    }
}
