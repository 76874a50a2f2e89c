import QtQuick 2.15
import "../controls"
import "../theme"

// The place of the monitor on its page.
PlainText {
    property var row

    text: qsTr("This model offers a monitor; its values are listed on this page.")
    color: Theme.quietTextColor
    wrapMode: Text.Wrap
    Accessible.name: text
}
