import QtQuick 2.15
import QtQuick.Layouts 1.15
import "../controls"
import "../theme"

// The bar at the top: which model, reached how, and the button that connects.
//
// programName   shown at the left
// manager       the object that holds the connection settings
// modelName     the chosen model
// watch         how it stands with the connection, a LinkWatch
// applying      the settings of a file are being written to the lidar
// lidarChosen(lidar)  another model is wanted: a map with "model", and with more where that is one
//                     of the lidars connected last, see reach()
// connectClicked()  connect or disconnect; not told while an address or port cannot be used
FocusScope {
    id: bar

    property var manager
    property string programName: ""
    property string modelName: ""
    property var watch
    property bool applying: false
    readonly property bool connecting: watch.connecting
    readonly property bool open: manager.IsConnected || connecting
    readonly property bool network: manager.connectType === 0
    readonly property bool serialPair: manager.connectType === 1

    signal lidarChosen(var lidar)
    signal connectClicked()
    signal cancelClicked()
    signal restartWanted()
    signal resetWanted()
    signal aboutWanted()
    signal settingsWanted(string what)

    // Says beside the fields what cannot be used, before anything is dialled.
    function connectOrDisconnect() {
        asked = !open && network && networkFields.problem !== "";
        if (asked)
            networkFields.showProblem();
        else
            connectClicked();
    }

    // To where the fields say, what is still being typed included; what is connected stays so.
    function reconnect() {
        if (open)
            return;
        if (activeFocus)
            connectButton.forceActiveFocus(Qt.ShortcutFocusReason);
        connectOrDisconnect();
    }

    property bool asked: false

    // The model to begin with, where none is fixed.
    function firstModel(usual) {
        return recent.firstModel(usual);
    }

    // Sets up how a lidar of the chosen model is reached; Connect is what comes next.
    function reach(lidar) {
        recent.reach(lidar);
        connectButton.forceActiveFocus(Qt.TabFocusReason);
    }

    function pick(lidar) {
        if (lidar.model === modelName)
            reach(lidar);
        else
            lidarChosen(lidar);
    }

    onModelNameChanged: if (modelName !== "" && manager.getPVNowName() === "")
                            recent.recents.lastModel = modelName

    RecentControl {
        id: recent

        manager: bar.manager
        watch: bar.watch
        modelName: bar.modelName
    }

    implicitHeight: Theme.topBarHeight

    Rectangle {
        anchors.fill: parent
        color: Theme.trenchColor
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.gapWide
        anchors.rightMargin: Theme.gapWide
        spacing: Theme.gapWide

        PlainText {
            Layout.rightMargin: Theme.gap
            text: bar.programName
            font: Theme.headlineFont
        }

        LabelledField {
            caption: qsTr("Model")

            DefaultComboBox {
                objectName: "modelChoice"
                width: Theme.modelFieldWidth
                enabled: !bar.manager.IsConnected && bar.manager.getPVNowName() === ""
                         && !bar.connecting
                model: bar.manager.LidarModelList
                chosenIndex: bar.manager.LidarModelList.indexOf(bar.modelName)
                label: qsTr("Lidar model")
                hint: enabled ? qsTr("Choose the model of the lidar before connecting")
                              : qsTr("The model cannot be changed now")
                // What is chosen comes back with modelName, unless something speaks against it.
                onChosen: {
                    const name = model[index];
                    revert();
                    bar.lidarChosen({ "model": name });
                }
            }
        }

        NetworkFields {
            id: networkFields

            visible: bar.network
            enabled: !bar.open
            manager: bar.manager
            recents: recent.choices
            onLidarPicked: bar.pick(lidar)
        }

        SerialFields {
            visible: !bar.network
            enabled: !bar.open
            manager: bar.manager
            pair: bar.serialPair
            recents: recent.choices
            onLidarPicked: bar.pick(lidar)
        }

        PlainText {
            objectName: "connectionProblem"
            Layout.fillWidth: true
            text: bar.asked && bar.network ? networkFields.problem : ""
            font: Theme.captionFont
            color: Theme.errorColor
            wrapMode: Text.Wrap
            maximumLineCount: 3
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }

        LoadingWidget {
            objectName: "connectingIndicator"
            running: bar.connecting
            text: qsTr("Connecting…")
        }

        StatusLamp {
            objectName: "connectionLamp"
            visible: !bar.connecting
            on: bar.manager.IsConnected
            // The port is open, which is all that is known then.
            connectedText: bar.watch.silent ? qsTr("No answer") : qsTr("Connected")
        }

        DefaultButton {
            objectName: "cancelConnecting"
            visible: bar.connecting
            emphasised: true
            text: qsTr("Cancel")
            onClicked: bar.cancelClicked()
        }

        DefaultButton {
            id: connectButton

            objectName: "connectButton"
            emphasised: !bar.open
            enabled: !bar.manager.IsDownloadLog
            text: bar.manager.IsConnected ? qsTr("Disconnect") : qsTr("Connect")
            onClicked: bar.connectOrDisconnect()
        }

        BarTools {
            network: bar.network
            applying: bar.applying
            onSettingsWanted: bar.settingsWanted(what)
            onRestartWanted: bar.restartWanted()
            onResetWanted: bar.resetWanted()
            onAboutWanted: bar.aboutWanted()
        }
    }
}
