import QtQuick 2.15
import "../controls"
import "../theme"

// What a support bundle would hold, before it is written.
//
// entries  of a SupportBundle
DialogFrame {
    id: box

    property var entries: []

    objectName: "bundleBox"
    title: qsTr("Support bundle")
    message: qsTr("One .zip for whoever helps you, with these files:")
    advice: qsTr("There are no keys in it, and neither your name nor the computer's. Addresses and serial numbers of lidars are.")
    acceptText: qsTr("Save…")
    cancellable: true
    iconSource: "../icons/file.svg"

    extra: Repeater {
        model: box.entries

        Column {
            id: entry

            readonly property bool packed: modelData.leftOut === ""

            objectName: "bundleEntry_" + index
            width: parent.width
            spacing: Theme.gapTiny
            Accessible.role: Accessible.ListItem
            Accessible.name: title.text + ", " + note.text

            PlainText {
                id: title

                width: parent.width
                text: entry.packed ? qsTr("%1 (%2)").arg(modelData.name).arg(modelData.size) : modelData.name
                color: entry.packed ? Theme.textColor : Theme.quietTextColor
                elide: Text.ElideRight
            }
            PlainText {
                id: note

                width: parent.width
                text: entry.packed ? modelData.what : qsTr("%1; left out: %2").arg(modelData.what).arg(modelData.leftOut)
                font: Theme.captionFont
                color: Theme.quietTextColor
                wrapMode: Text.Wrap
            }
        }
    }
}
