import QtQuick 2.15
import "../controls"
import "../theme"

// Which monitor table is used, and how the values are read.
FocusScope {
    id: head

    property var manager

    implicitHeight: Theme.controlHeight

    DefaultComboBox {
        id: version

        objectName: "monitorVersion"
        anchors.left: parent.left
        anchors.right: refresh.left
        anchors.rightMargin: Theme.gap
        focus: true
        enabled: count > 0
        model: head.manager.monitorHwVersionList.map(name => qsTr("Hardware %1").arg(name))
        chosenIndex: head.manager.monitorHwVersionList.indexOf(head.manager.currentMonitorHwVersion)
        displayText: currentIndex < 0 ? qsTr("Hardware version") : currentText
        label: qsTr("Hardware version of the monitor")
        hint: qsTr("Hardware version of the lidar, which decides what values it measures")
        onChosen: {
            head.manager.selectMonitorHwVersion(head.manager.monitorHwVersionList[index]);
            revert();
        }
    }

    DefaultButton {
        id: refresh

        objectName: "monitorRefresh"
        anchors.right: auto.left
        anchors.rightMargin: Theme.gap
        enabled: head.manager.IsConnected
        text: qsTr("Refresh")
        hint: qsTr("Read the values now")
        onClicked: head.manager.refreshMonitor()
    }

    DefaultSwitch {
        id: auto

        objectName: "monitorAuto"
        anchors.right: parent.right
        text: qsTr("Auto")
        value: head.manager.monitorAutoRefresh
        hint: qsTr("Read the values once a second, on every page")
        onSwitched: head.manager.monitorAutoRefresh = on
    }
}
