import QtQuick 2.15

// What a serial-attached lidar says about itself, and what became of asking for it.
LumoSection {
    id: section

    property string name: ""
    property var entries: []
    readonly property var silent: entries.find(fact => fact.failure)
    readonly property var timed: entries.find(fact => fact.read_at)

    news: silent !== undefined && silent.state === "stale"
              ? qsTr("Read at %1, not since: %2.").arg(silent.read_at).arg(silent.failure)
        : silent !== undefined ? qsTr("Not read: %1.").arg(silent.failure)
        : !connected && timed !== undefined ? qsTr("Read at %1.").arg(timed.read_at) : ""
    failure: silent !== undefined ? silent.failure : ""

    LumoFacts {
        objectName: section.name
        width: parent.width
        entries: section.entries
        stale: !section.connected
    }
}
