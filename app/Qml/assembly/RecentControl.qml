import QtQuick 2.15
import Tevron 1.0

// The lidars that were connected last: notes each, and sets up how one of them is reached.
//
// manager    the object that connects
// watch      how it stands with the connection, a LinkWatch
// modelName  the chosen model
// modelWanted(name)  an entry of another model was chosen; what is set afterwards is for that one
Item {
    id: control

    property var manager
    property var watch
    property string modelName: ""
    readonly property string serialNumber: watch.serialNumber
    readonly property RecentLidars recents: RecentLidars {}

    signal modelWanted(string name)

    // The model to begin with.
    function firstModel(usual) {
        const last = recents.lastModel;
        return manager.LidarModelList.indexOf(last) >= 0 ? last : usual;
    }

    function take(entry) {
        if (manager.getPVNowName() === "" && entry.model !== modelName
                && manager.LidarModelList.indexOf(entry.model) >= 0)
            modelWanted(entry.model);
        if (modelName !== entry.model)
            return;
        if (manager.connectType === 0) {
            manager.ip_address = entry.address;
            manager.port = entry.port;
        } else {
            manager.serial_port_485 = entry.address;
            if (manager.connectType === 1)
                manager.serial_port_232 = entry.port;
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
