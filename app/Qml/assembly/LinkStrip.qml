import QtQuick 2.15
import Tevron 1.0
import "../controls"
import "../theme"

// The strip below the connection bar, always there so that the page below it stays where it is:
// which lidar is connected, or what has become of the connection. Its upper edge shows that something
// is waited for.
//
// manager  the object that connects
// watch    how it stands with the connection, a LinkWatch
// reconnectWanted(), cancelWanted()  see LinkBanner
FocusScope {
    id: strip

    property var manager
    property var watch

    signal reconnectWanted()
    signal cancelWanted()

    implicitHeight: Theme.linkStripHeight

    Rectangle {
        anchors.fill: parent
        color: Theme.trenchColor

        Rectangle {
            width: parent.width
            height: Theme.hairline
            color: Theme.windowColor
        }
    }

    IdentityBar {
        objectName: "identityBar"
        anchors.fill: parent
        anchors.leftMargin: Theme.gapWide
        anchors.rightMargin: Theme.gapWide
        visible: strip.manager.IsConnected && !banner.visible
        watch: strip.watch
        paced: strip.manager.connectType === 0
    }

    PlainText {
        anchors.left: parent.left
        anchors.leftMargin: Theme.gapWide
        anchors.verticalCenter: parent.verticalCenter
        visible: !strip.manager.IsConnected && !banner.visible
        text: qsTr("No lidar is connected.")
        color: Theme.quietTextColor
    }

    LinkBanner {
        id: banner

        objectName: "linkBanner"
        anchors.fill: parent
        watch: strip.watch
        onReconnectWanted: strip.reconnectWanted()
        onCancelWanted: strip.cancelWanted()
        onAskWanted: LongCalls.Run(() => strip.manager.CheckLidarConnection())
    }

    BusyLine {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        busy: strip.watch.connecting || strip.manager.isGetPBLVersion
        now: LongCalls.waiting
    }
}
