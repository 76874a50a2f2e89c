import QtQuick 2.15

// The baud rate at which a serial-attached lidar sends its point cloud. `held` is the rate as text.
LumoSection {
    id: section

    readonly property var rates: ["9600", "115200", "230400", "460800", "921600", "1000000",
                                  "2000000", "3000000", "3125000"]
    readonly property string rate: held.length > 0 ? held[0] : ""
    readonly property var wanted: [choice.chosen >= 0 ? rates[choice.chosen] : rate]

    signal readWanted()
    signal setWanted()

    title: qsTr("Baud rate")
    fields: [choice]

    LumoChoice {
        id: choice

        caption: qsTr("Point-cloud rate")
        name: "baudRate"
        label: qsTr("Baud rate of the point cloud")
        model: section.rates
        heldIndex: section.rates.indexOf(section.rate)
        heldText: section.rate
        stale: section.stale
    }
    LumoReadSet {
        prefix: "baud"
        what: qsTr("the baud rate")
        complete: choice.chosen >= 0
        onReadWanted: section.readWanted()
        onSetWanted: section.setWanted()
    }
}
