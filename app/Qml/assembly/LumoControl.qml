import QtQuick 2.15

// What the serial screen does with the lidar: reads and sets its groups, one thing after the other.
//
// manager    the object that talks to the lidar
// obstacle   why nothing can be asked now; empty when it can
// network to operation  the groups of the screen
// info, versions  what the lidar says of itself, or said last
// activity   what is being done right now, as a sentence; empty when nothing is
// hasEdits   something stands in the groups that was not set
// refused(reason)  what the user wanted cannot be done now
Item {
    id: control

    property var manager
    property string obstacle: ""
    property var network
    property var destination
    property var baudRate
    property var safety
    property var operation
    property var info: []
    property var versions: []
    readonly property bool ready: obstacle.length === 0 && !manager.isGetPBLVersion
    readonly property string activity: talk.activity.length > 0 ? talk.activity
        : manager.isGetPBLVersion ? qsTr("Reading the PBL version…") : ""
    readonly property var groups: [network, destination, baudRate, operation]
    readonly property bool hasEdits: groups.some(group => group.edited)

    signal refused(string reason)

    function ask(group, silent) {
        switch (group) {
        case network: return manager.LumoGetNetConfig(silent);
        case destination: return manager.LumoGetDestinationConfig(silent);
        case baudRate: return [manager.LumoGetBaudRate()].filter(rate => rate);
        default: return manager.LumoGetLidarFunctionSafety();
        }
    }

    function tell(group, values) {
        switch (group) {
        case network: return manager.LumoSetNet(...values);
        case destination: return manager.LumoSetDestinationIPandPort(...values);
        default: return manager.LumoSetBaudRateFromUI(values[0]);
        }
    }

    function tellOrder(order, values) {
        switch (order) {
        case "returnMode": return manager.LumoSetReturnMode(values.return_mode);
        case "spinRate": return manager.LumoSetSpinRate(values.spin_rate);
        case "standby": return manager.LumoSetStandby(values.standby);
        default: return manager.KivaSetIMURange(values.angular_range, values.accel_range);
        }
    }

    function run(text, operation) {
        talk.run(text, [operation]);
    }

    function readNow(group, silent) {
        group.take(talk.ask(() => ask(group, silent)), talk.reason || qsTr("refused"));
    }

    // What was taken is read back where that can be done without a box.
    function setNow(group) {
        const values = group.wanted;
        talk.ask(() => tell(group, values));
        if (talk.failed)
            return;
        group.accept(values, false);
        if (group !== baudRate)
            talk.goOn(() => readNow(group, true));
    }

    function setOrderNow(order) {
        const values = operation.orders[order].values;
        talk.ask(() => tellOrder(order, values));
        if (!talk.failed)
            operation.take(values);
    }

    function read(group) {
        talk.run(qsTr("%1: reading…").arg(group.title), [() => readNow(group, false)]);
    }

    function set(group) {
        talk.run(qsTr("%1: setting…").arg(group.title), [() => setNow(group)]);
    }

    function setOrder(order) {
        talk.run(qsTr("%1: setting…").arg(operation.title), [() => setOrderNow(order)]);
    }

    // Sets all that is edited, and does `next` after that.
    function settle(next) {
        if (obstacle.length > 0) {
            refused(obstacle);
            next();
            return;
        }
        const edited = groups.filter(group => group.edited);
        const wrong = edited.find(group => !group.complete);
        if (wrong !== undefined) {
            refused(qsTr("%1 cannot be set as it stands.").arg(wrong.title));
            return;
        }
        talk.follow(qsTr("Setting what was changed…"),
                    edited.filter(group => group !== operation).map(group => () => setNow(group))
                          .concat(operation.editedOrders.map(order => () => setOrderNow(order)), next));
    }

    function discard() {
        for (const group of groups)
            group.undo();
    }

    // After the facts: two readers at once would only wait for each other.
    function readSettings() {
        if (!ready || manager.connectType !== 2)
            return;
        talk.run(qsTr("Reading the lidar's settings…"),
                 [() => readNow(network, true), () => readNow(destination, true)]);
    }

    function showFacts() {
        info = manager.LumoLidarInfo;
        versions = manager.LumoLidarVersionInfo;
    }

    onObstacleChanged: if (obstacle.length > 0)
                           talk.drop()

    Component.onCompleted: {
        showFacts();
        readSettings();
    }

    Connections {
        target: control.manager
        function onLumoLidarInfoChanged() {
            if (control.manager.IsConnected)
                control.showFacts();
        }
        function onIsConnectedChanged() {
            if (!control.manager.IsConnected)
                return;
            for (const group of control.groups.concat([control.safety]))
                group.forget();
            control.showFacts();
        }
        function onIsGetPBLVersionChanged() { control.readSettings(); }
        function onLidarModelChanged() {
            control.discard();
            control.showFacts();
        }
    }

    LumoTalk {
        id: talk

        manager: control.manager
    }
}
