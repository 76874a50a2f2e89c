import QtQuick 2.15
import QtQuick.Layouts 1.15
import Tevron 1.0
import "../controls"
import "../theme"

// The line at the bottom that tells whether point-cloud packets arrive: over UDP, when asked, and
// from whom; on the UART of a pair of serial ports for as long as that is connected.
//
// brief              there is little room: what nobody asked for is left out
// manager            the manager, for what its connection receives
// port               the UDP port; portEntered(text) asks for another
FocusScope {
    id: bar

    property QtObject manager: null
    property string port: ""
    property bool brief: false

    // A watch that failed has something to say as well.
    property bool udpAsked: false

    signal portEntered(string text)

    implicitWidth: content.implicitWidth + 2 * Theme.gapWide
    implicitHeight: Theme.stripWidth

    UdpWatch {
        id: watch

        objectName: "udpWatch"
    }

    UartWatch {
        id: uart

        manager: bar.manager
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.trenchColor
    }

    RowLayout {
        id: content

        anchors.fill: parent
        anchors.leftMargin: Theme.gapWide
        anchors.rightMargin: Theme.gapWide
        spacing: Theme.gap

        PlainText {
            text: bar.brief ? qsTr("UDP") : qsTr("Point cloud on UDP port")
            font: Theme.captionFont
            color: Theme.quietTextColor
        }

        DefaultTextField {
            objectName: "udpPortField"
            Layout.preferredWidth: Theme.numberFieldWidth
            Layout.preferredHeight: Theme.smallControlHeight
            enabled: !watch.running
            value: bar.port
            problem: InputRules.PortProblem(text)
            label: qsTr("UDP port of the point cloud")
            hint: qsTr("UDP port to which the lidar sends its points, 1 to 65535")
            onCommitted: {
                bar.portEntered(text);
                revert();
            }
        }

        DefaultToolButton {
            objectName: "udpWatchButton"
            Layout.preferredHeight: Theme.smallControlHeight
            font: Theme.captionFont
            text: watch.running ? qsTr("Stop watching") : qsTr("Watch")
            icon.source: watch.running ? "../icons/stop.svg" : "../icons/play.svg"
            hint: qsTr("See whether packets arrive on this port, and from whom")
            onClicked: {
                bar.udpAsked = !watch.running;
                watch.running ? watch.Stop() : watch.Start(bar.port);
            }
        }

        PlainText {
            objectName: "udpSummary"
            visible: bar.udpAsked || !uart.running && !bar.brief
            Layout.fillWidth: true
            text: watch.summary
            font: Theme.captionFont
            color: watch.arriving ? Theme.successColor : Theme.quietTextColor
            elide: Text.ElideRight
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }

        PlainText {
            visible: watch.packetCount > 0 && !bar.brief
            text: qsTr("%1 packets so far").arg(watch.packetCount)
            font: Theme.captionFont
            color: Theme.quietTextColor
        }

        PlainText {
            visible: uart.running
            text: bar.brief ? qsTr("UART") : qsTr("On the UART:")
            font: Theme.captionFont
            color: Theme.quietTextColor
        }

        PlainText {
            objectName: "uartSummary"
            visible: uart.running
            Layout.fillWidth: true
            text: uart.summary
            font: Theme.captionFont
            color: uart.arriving ? Theme.successColor : Theme.quietTextColor
            elide: Text.ElideRight
            Accessible.role: Accessible.StaticText
            Accessible.name: qsTr("On the UART:") + " " + text
        }

        PlainText {
            objectName: "uartTally"
            visible: text !== "" && !bar.brief
            text: uart.tally
            font: Theme.captionFont
            color: Theme.quietTextColor
        }
    }
}
