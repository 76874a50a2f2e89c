import QtQuick 2.15
import Tevron 1.0

// The lidars that were connected last: notes each, and sets up how one of them is reached.
//
// manager    the object that connects
// watch      how it stands with the connection, a LinkWatch
// modelName  the chosen model
// choices    those of them whose model can be chosen, the latest first, with a "kind" for a ListedField
Item {
    id: control

    property var manager
    property var watch
    property string modelName: ""
    readonly property string serialNumber: watch.serialNumber
    readonly property RecentLidars recents: RecentLidars {}
    readonly property var choices: recents.entries.filter(isChoosable).map(
        entry => Object.assign({ "kind": qsTr("Connected last") }, entry))

    function isChoosable(entry) {
        const only = manager.getPVNowName();
        return only === "" ? manager.LidarModelList.indexOf(entry.model) >= 0 : entry.model === only;
    }

    // The model to begin with.
    function firstModel(usual) {
        const last = recents.lastModel;
        return manager.LidarModelList.indexOf(last) >= 0 ? last : usual;
    }

    // The next attempt goes to this lidar, which is of the chosen model.
    function reach(lidar) {
        if (manager.connectType === 0) {
            manager.ip_address = lidar.address;
            manager.port = lidar.port;
        } else {
            manager.serial_port_485 = lidar.address;
            if (manager.connectType === 1)
                manager.serial_port_232 = lidar.port;
        }
    }

    function note() {
        if (!manager.IsConnected)
            return;
        const network = manager.connectType === 0;
        const port = network ? manager.port : manager.connectType === 1 ? manager.serial_port_232 : "";
        recents.Note(modelName, network ? manager.ip_address : manager.serial_port_485, port,
                     watch.serialNumber);
    }

    // It is read after the lidar is connected.
    onSerialNumberChanged: note()

    Connections {
        target: control.manager
        function onIsConnectedChanged() { control.note(); }
    }
}
