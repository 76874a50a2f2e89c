import QtQuick 2.15
import QtTest 1.15
import TevronTest 1.0
import "qrc:/Qml/assembly"

// The Connect button's logic, the link check and the comparison of the lidar's numbers.
TestCase {
    id: test

    readonly property string mismatch: "WARNING: Please note that a mismatch is detected between the lidar model on the connection and the one selected."
    readonly property string problem: "WARNING: There is a problem with the PN or SN code of the device you are connecting to."

    property var manager
    property var link
    property var refusals: []
    property var warnings: []

    name: "LinkControl"

    Component { id: managerComponent; FakeManager {} }
    Component {
        id: linkComponent

        LinkControl {
            modelName: "Orca"
            tab: 2
            onRefused: test.refusals.push(reason)
            onWarned: test.warnings.push(text)
        }
    }

    function connected(on) { manager["IsConnected"] = on; }

    function init() {
        manager = managerComponent.createObject(test, { pn: "Orca-64", sn: "Orca-1" });
        connected(false);
        link = createTemporaryObject(linkComponent, test, { manager: manager });
        refusals = [];
        warnings = [];
    }

    function names() { return manager.calls.map(call => call[0]); }

    function test_the_button_connects_and_disconnects_but_not_during_an_upgrade() {
        link.toggle();
        connected(true);
        compare(names(), ["ConnectLidar", "GetLidarModuleInfo"]);
        tryVerify(() => manager.calls.length === 3);
        manager["IsUpgrading"] = true;
        link.toggle();
        compare(refusals, ["Disconnect REJECTED. Lidar is upgrading."]);
        manager["IsUpgrading"] = false;
        link.toggle();
        compare(names(), ["ConnectLidar", "GetLidarModuleInfo", "GetLidarModuleInfo", "Stop"]);
        compare(manager.calls[1][1], 0);
        compare(manager.calls[2][1], 2);
    }

    function test_the_link_check_disconnects_a_dead_lidar() {
        connected(true);
        const timer = findChild(link, "linkCheckTimer");
        verify(timer.running);
        compare(timer.interval, 5000);
        manager.calls = [];
        for (const busy of ["IsDownloadLog", "IsUpgrading"]) {
            manager[busy] = true;
            timer.triggered();
            manager[busy] = false;
        }
        compare(manager.calls, []);
        timer.triggered();
        verify(timer.running);
        manager.alive = false;
        timer.triggered();
        compare(names(), ["CheckLidarConnection", "CheckLidarConnection", "Stop"]);
        verify(!timer.running);
    }

    function test_a_lidar_that_goes_at_once_is_not_asked_for_the_page_in_view() {
        connected(true);
        connected(false);
        wait(20);
        compare(names(), ["GetLidarModuleInfo"]);
    }

    function test_a_serial_lidar_is_neither_read_nor_checked() {
        manager.connectType = 2;
        connected(true);
        compare(manager.calls, []);
        verify(!findChild(link, "linkCheckTimer").running);
    }

    // An unread number reads "xxxxxxxx", which is not empty and names no model.
    function test_numbers_are_compared_with_the_model_data() {
        return [{ tag: "both match", pn: "Orca-64", sn: "Orca1", warning: "" },
                { tag: "the part number's family is enough", pn: "Or-9", sn: "123", warning: "" },
                { tag: "the serial number is enough", pn: "123", sn: "99Orca", warning: "" },
                { tag: "letter case counts", pn: "orca", sn: "ORCA", warning: mismatch },
                { tag: "unread", pn: "xxxxxxxx", sn: "xxxxxxxx", warning: mismatch },
                { tag: "one empty", pn: "", sn: "Orca1", warning: problem },
                { tag: "both empty", pn: "", sn: "", warning: problem },
                { tag: "one empty, one of six letters", pn: "xxxxxx", sn: "", warning: problem }];
    }

    function test_numbers_are_compared_with_the_model(data) {
        manager.pn = data.pn;
        manager.sn = data.sn;
        connected(true);
        compare(warnings.length, data.warning === "" ? 0 : 1);
        if (warnings.length > 0)
            verify(warnings[0].startsWith(data.warning));
    }
}
