import QtQuick 2.15
import QtTest 1.15
import TevronTest 1.0
import "qrc:/Qml/assembly"

// The Connect button's logic, the link check and the comparison of the lidar's numbers.
TestCase {
    id: test

    property var refusals: []
    property var warnings: []

    name: "LinkControl"

    FakeManager { id: manager }

    LinkControl {
        id: link

        manager: manager
        modelName: "Orca"
        tab: 2
        onRefused: test.refusals.push(reason)
        onWarned: test.warnings.push(text)
    }

    function connected(on) { manager["IsConnected"] = on; }

    function init() {
        manager["IsUpgrading"] = false;
        manager["IsDownloadLog"] = false;
        manager.connecting = false;
        manager.alive = true;
        manager.connectType = 0;
        connected(false);
        manager.pn = "Orca-64";
        manager.sn = "Orca-1";
        manager.calls = [];
        refusals = [];
        warnings = [];
    }

    function names() { return manager.calls.map(call => call[0]); }

    function test_the_button_connects_and_disconnects() {
        link.toggle();
        connected(true);
        link.toggle();
        compare(names(), ["ConnectLidar", "GetLidarModuleInfo", "GetLidarModuleInfo", "Stop"]);
        compare(manager.calls[1][1], 0);
        compare(manager.calls[2][1], 2);
    }

    function test_the_button_waits_and_protects_an_upgrade() {
        manager.connecting = true;
        link.toggle();
        manager.connecting = false;
        connected(true);
        manager["IsUpgrading"] = true;
        manager.calls = [];
        link.toggle();
        compare(refusals, ["Is Connecting Lidar... Please wait.",
                           "Disconnect REJECTED. Lidar is upgrading."]);
        compare(manager.calls, []);
    }

    function test_the_link_check_disconnects_a_dead_lidar() {
        connected(true);
        const timer = findChild(link, "linkCheckTimer");
        verify(timer.running);
        compare(timer.interval, 5000);
        manager.calls = [];
        manager["IsDownloadLog"] = true;
        timer.triggered();
        compare(manager.calls, []);
        manager["IsDownloadLog"] = false;
        timer.triggered();
        verify(timer.running);
        manager.alive = false;
        timer.triggered();
        compare(names(), ["CheckLidarConnection", "CheckLidarConnection", "Stop"]);
        verify(!timer.running);
    }

    function test_a_serial_lidar_is_neither_read_nor_checked() {
        manager.connectType = 2;
        connected(true);
        compare(manager.calls, []);
        verify(!findChild(link, "linkCheckTimer").running);
        manager.connectType = 0;
    }

    // An unread number reads "xxxxxxxx", which is not empty and names no model.
    function test_numbers_are_compared_with_the_model_data() {
        return [{ "tag": "both match", "pn": "Orca-64", "sn": "Orca1", "warning": "" },
                { "tag": "the part number's family is enough", "pn": "Or-9", "sn": "123",
                  "warning": "" },
                { "tag": "the serial number is enough", "pn": "123", "sn": "99Orca", "warning": "" },
                { "tag": "letter case counts", "pn": "orca", "sn": "ORCA",
                  "warning": "WARNING: Please note that a mismatch is detected between the lidar model on the connection and the one selected." },
                { "tag": "unread", "pn": "xxxxxxxx", "sn": "xxxxxxxx",
                  "warning": "WARNING: Please note that a mismatch is detected between the lidar model on the connection and the one selected." },
                { "tag": "one empty", "pn": "", "sn": "Orca1",
                  "warning": "WARNING: There is a problem with the PN or SN code of the device you are connecting to." },
                { "tag": "both empty", "pn": "", "sn": "",
                  "warning": "WARNING: There is a problem with the PN or SN code of the device you are connecting to." },
                { "tag": "one empty, one of six letters", "pn": "xxxxxx", "sn": "",
                  "warning": "WARNING: There is a problem with the PN or SN code of the device you are connecting to." }];
    }

    function test_numbers_are_compared_with_the_model(data) {
        manager.pn = data.pn;
        manager.sn = data.sn;
        connected(true);
        if (data.warning === "") {
            compare(warnings, []);
        } else {
            compare(warnings.length, 1);
            verify(warnings[0].startsWith(data.warning));
        }
    }
}
