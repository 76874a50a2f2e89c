import QtQuick 2.15
import QtQuick.Layouts 1.15
import "qrc:/Qml/assembly"
import "qrc:/Qml/theme"

// Every reusable control once, in each of its states, on a page of the least size that the window
// has. Tests walk over it; a person looks at it.
Rectangle {
    id: gallery

    readonly property alias errorBox: errorBox
    readonly property alias successBox: successBox
    readonly property alias messageBox: messageBox
    readonly property alias aboutBox: aboutBox

    width: 1300
    height: 800
    color: Theme.windowColor

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.gapWide
        spacing: Theme.gapWide

        RowLayout {
            spacing: Theme.gapWide
            StatusLamp { on: true }
            StatusLamp {}
            LoadingWidget { running: true; text: "Connecting to 127.0.0.1" }
            LoadingWidget { running: true; text: "Upgrading"; progress: 0.42 }
        }
        TabWidget {
            Layout.fillWidth: true
            titles: ["Overview", "Scan", "Network", "FOV", "Safety", "Thermal", "Diagnostics"]
            currentIndex: 1
            marked: [2]
        }
        SectionTitle {
            Layout.fillWidth: true
            text: "Text fields"
            description: "Plain, edited and not saved, out of range, read only, empty."
        }
        RowLayout {
            spacing: Theme.gapWide
            DefaultTextField { label: "Spin rate"; value: "600"; unit: "rpm"; hint: "300 to 1200 rpm" }
            DefaultTextField { label: "Frame rate"; value: "20"; unit: "Hz"; pending: true }
            DefaultTextField { label: "Threshold"; value: "9999"; pending: true; problem: "0 to 255" }
            DefaultTextField { label: "Serial number"; value: "OR-0042"; enabled: false }
            DefaultTextField { label: "Address"; placeholderText: "Address" }
        }
        SectionTitle { Layout.fillWidth: true; text: "Switches and choices" }
        RowLayout {
            spacing: Theme.gapWide
            DefaultSwitch { label: "Heater"; value: true }
            DefaultSwitch { label: "Filter"; text: "Filter" }
            DefaultSwitch { label: "Sync"; text: "Sync"; value: true; pending: true }
            DefaultSwitch { label: "Off"; text: "Not possible"; enabled: false }
            DefaultComboBox {
                label: "Return mode"
                model: ["Strongest", "Last", "Dual"]
                chosenIndex: 1
                pending: true
            }
            DefaultComboBox { label: "Model"; model: ["Orca", "Osprey"]; chosenIndex: 0; enabled: false }
            DefaultCheckBox { text: "Raw bytes"; checked: true }
            DefaultCheckBox { text: "Errors only" }
        }
        SectionTitle { Layout.fillWidth: true; text: "Buttons" }
        RowLayout {
            spacing: Theme.gapWide
            DefaultButton { text: "Connect"; emphasised: true }
            DefaultButton { text: "Cancel"; hint: "Drop the edits" }
            DefaultButton { text: "Reset"; dangerous: true }
            DefaultButton { text: "Save"; enabled: false }
            DefaultButton { text: "Save"; emphasised: true; enabled: false }
            Repeater {
                model: ["gear", "info", "refresh", "close", "copy", "clear", "search", "folder",
                        "send", "attach", "play", "stop", "warning", "error", "success"]
                DefaultToolButton {
                    label: modelData
                    icon.source: "qrc:/Qml/icons/" + modelData + ".svg"
                }
            }
        }
        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: Theme.gapWide
            Panel {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Histogram {
                    anchors.fill: parent
                    title: "Temperatures"
                    values: [41, 38.5, 55, 12, 0]
                    labels: ["Board", "Laser", "Motor", "Case", "Spare"]
                    unit: " °C"
                }
            }
            Panel {
                Layout.fillWidth: true
                Layout.fillHeight: true
                SectionTitle {
                    width: parent.width
                    text: "A panel"
                    description: "Groups what belongs together."
                }
            }
        }
    }

    ErrorInfoWindow { id: errorBox }
    SuccessInfoWindow { id: successBox }
    MessageWindow { id: messageBox }
    AboutWindow { id: aboutBox; applicationName: "Tevron"; details: ["Model: Orca"] }
}
