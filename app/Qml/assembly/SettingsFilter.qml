import QtQuick 2.15
import QtQuick.Layouts 1.15
import "../controls"
import "../theme"

// Which rows of a comparison are in view, and how many there are.
//
// rows  a SettingsRows; twoSides  there is something to differ
RowLayout {
    id: filter

    property var rows
    property bool twoSides: true

    spacing: Theme.gap

    PlainText {
        objectName: "settingsCounts"
        Layout.fillWidth: true
        text: filter.rows.summary
        elide: Text.ElideRight
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }

    ToggleChip {
        objectName: "settingsOnlyDiffering"
        visible: filter.twoSides
        text: qsTr("Only differing")
        label: qsTr("Show only what differs")
        checked: filter.rows.onlyDiffering
        onToggled: filter.rows.onlyDiffering = checked
    }
    ToggleChip {
        objectName: "settingsOnlyWritable"
        text: qsTr("Only settings")
        label: qsTr("Show only what can be changed, and no readings")
        checked: filter.rows.onlyWritable
        onToggled: filter.rows.onlyWritable = checked
    }
    DefaultTextField {
        objectName: "settingsFilter"
        Layout.preferredWidth: Theme.logSearchWidth
        placeholderText: qsTr("Filter text")
        label: qsTr("Show only rows whose name, page or value contains these words")
        hint: label
        value: filter.rows.filter
        onTextEdited: filter.rows.filter = text
    }
}
