import QtQuick 2.15
import "../theme"

// The place of the monitor on its page.
Text {
    property var row

    text: qsTr("This model offers a monitor; its values are listed on this page.")
    font: Theme.bodyFont
    color: Theme.quietTextColor
    wrapMode: Text.Wrap
    Accessible.name: text
}
