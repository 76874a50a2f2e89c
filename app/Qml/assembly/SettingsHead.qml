import QtQuick 2.15
import QtQuick.Layouts 1.15
import "../controls"
import "../theme"

// Who the two sides of a comparison are, and what speaks against writing one to the other.
//
// watch     a SettingsWatch; twoSides  it shows more than a file by itself
// closed()  the user wants the page back
ColumnLayout {
    id: head

    property var watch
    property bool twoSides: true

    signal closed()

    spacing: Theme.gap

    RowLayout {
        spacing: Theme.gapWide

        Repeater {
            model: head.twoSides ? [head.watch.left, head.watch.right] : [head.watch.left]

            Column {
                objectName: "settingsSide" + index
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                Layout.alignment: Qt.AlignTop
                spacing: Theme.gapTiny

                PlainText {
                    objectName: "settingsTitle" + index
                    width: parent.width
                    text: modelData.title || ""
                    font: Theme.titleFont
                    elide: Text.ElideMiddle
                    Accessible.role: Accessible.Heading
                    Accessible.name: text
                }
                PlainText {
                    objectName: "settingsFacts" + index
                    width: parent.width
                    text: [modelData.model, modelData.serial ? qsTr("SN %1").arg(modelData.serial) : "",
                           modelData.version, modelData.time].filter(fact => fact).join(" · ")
                    font: Theme.captionFont
                    color: Theme.quietTextColor
                    elide: Text.ElideRight
                    Accessible.role: Accessible.StaticText
                    Accessible.name: text
                }
            }
        }

        DefaultToolButton {
            objectName: "settingsClose"
            Layout.alignment: Qt.AlignTop
            icon.source: "../icons/close.svg"
            iconSize: Theme.smallIconSize
            label: qsTr("Back to the page (Esc)")
            onClicked: head.closed()
        }
    }

    Repeater {
        model: head.watch.refusal !== "" ? [head.watch.refusal] : head.watch.warnings

        PlainText {
            objectName: "settingsWarning" + index
            Layout.fillWidth: true
            text: modelData
            color: head.watch.refusal !== "" ? Theme.errorColor : Theme.warningColor
            wrapMode: Text.Wrap
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
    }
}
