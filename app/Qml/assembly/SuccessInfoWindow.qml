import QtQuick 2.15
import "../controls"
import "../theme"

// Something was done.
NoticeWindow {
    objectName: "successInfoWindow"
    title: qsTr("Done")
    adviceFor: message => qsTr("Nothing else to do: you can go on.")
    iconSource: "../icons/success.svg"
    tone: Theme.successColor
}
