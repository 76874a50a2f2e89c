import QtQuick 2.15
import "../controls"
import "../theme"

// The sign of an encrypted link. How it is encrypted takes more room than there is here: the box
// about this program tells it.
//
// text   how the link is encrypted; empty when it is not
Row {
    id: sign

    property string text: ""

    objectName: "linkSecurity"
    visible: text !== ""
    spacing: Theme.gapTiny
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    Icon {
        anchors.verticalCenter: parent.verticalCenter
        source: "../icons/lock.svg"
        color: Theme.successColor
        size: Theme.smallIconSize
    }
    PlainText {
        text: qsTr("TLS")
        color: Theme.quietTextColor
    }

    HoverHandler { id: pointer }
    DefaultToolTip {
        wanted: pointer.hovered
        text: qsTr("Encrypted. About tells the lidar's certificate.")
    }
}
