import QtQuick 2.15
import "../theme"

// The baud rate at which a serial-attached lidar sends its point cloud.
LumoSection {
    id: section

    // The rate that the lidar holds, as text; empty when it has not been asked.
    property string rate: ""
    readonly property var rates: ["9600", "115200", "230400", "460800", "921600", "1000000",
                                  "2000000", "3000000", "3125000"]

    signal readWanted()
    signal setWanted(string rate)

    // Shows what the lidar holds, a list of one or no rate, over whatever was chosen.
    function take(held) {
        rate = held.length > 0 ? held[0] : "";
        choice.revert();
    }

    title: qsTr("Baud rate")

    LumoField {
        caption: qsTr("Point-cloud rate")
        DefaultComboBox {
            id: choice

            objectName: "baudRate"
            width: Theme.serialChoiceWidth
            model: section.rates
            chosenIndex: section.rates.indexOf(section.rate)
            displayText: currentIndex >= 0 ? currentText : section.rate.length > 0 ? section.rate
                                                                                   : Theme.unreadText
            label: qsTr("Baud rate of the point cloud")
            hint: label
        }
    }
    LumoReadSet {
        prefix: "baud"
        what: qsTr("the baud rate")
        complete: choice.currentIndex >= 0
        onReadWanted: section.readWanted()
        onSetWanted: section.setWanted(choice.currentText)
    }
}
