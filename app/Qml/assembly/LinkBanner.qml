import QtQuick 2.15
import QtQuick.Layouts 1.15
import QtQuick.Templates 2.15 as T
import QtQuick.Window 2.15
import "../controls"
import "../theme"

// The connection is lost, a lidar that restarts is waited for, or one on a serial line is silent:
// since when and why, and the one key that goes on from there.
//
// watch   how it stands with the connection, a LinkWatch
// reconnectWanted(), cancelWanted(), askWanted()  what the buttons say
FocusScope {
    id: banner

    property var watch
    readonly property bool wanted: watch.lost || watch.awaiting || watch.silent

    signal reconnectWanted()
    signal cancelWanted()
    signal askWanted()

    function isInBox(item) {
        return item !== null && (item === T.Overlay.overlay || isInBox(item.parent));
    }

    // Enter is for Reconnect, unless somebody is typing something else or has a question to answer.
    function takeKeyboard() {
        const item = Window.activeFocusItem;
        const typing = item !== null && item.cursorPosition !== undefined && !item.readOnly;
        if (visible && !typing && !isInBox(item))
            reconnect.forceActiveFocus(Qt.TabFocusReason);
    }

    visible: wanted
    onVisibleChanged: if (watch.lost) Qt.callLater(takeKeyboard)

    Rectangle {
        anchors.fill: parent
        color: Theme.panelColor

        Rectangle {
            width: Theme.gapTiny
            height: parent.height
            color: banner.watch.connecting ? Theme.accentColor : Theme.warningColor
        }
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.gapWide
        anchors.rightMargin: Theme.gapWide
        spacing: Theme.gap

        Icon {
            source: banner.watch.connecting ? "../icons/info.svg" : "../icons/warning.svg"
            color: banner.watch.connecting ? Theme.accentColor : Theme.warningColor
        }
        PlainText {
            objectName: "linkNews"
            Layout.fillWidth: true
            text: banner.watch.news
            elide: Text.ElideRight
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
        DefaultButton {
            objectName: "stopAwaiting"
            Layout.preferredHeight: Theme.smallControlHeight
            visible: banner.watch.awaiting
            text: qsTr("Stop Waiting")
            onClicked: banner.cancelWanted()
        }
        DefaultButton {
            objectName: "askAgain"
            Layout.preferredHeight: Theme.smallControlHeight
            visible: banner.watch.silent
            text: qsTr("Ask Again")
            onClicked: banner.askWanted()
        }
        DefaultButton {
            id: reconnect

            objectName: "reconnectButton"
            Layout.preferredHeight: Theme.smallControlHeight
            visible: banner.watch.lost && !banner.watch.connecting
            emphasised: true
            text: qsTr("Reconnect (F5)")
            onClicked: banner.reconnectWanted()
        }
    }
}
