import QtQuick 2.15
import QtQuick.Layouts 1.15
import QtQuick.Templates 2.15 as T
import Tevron 1.0
import "../controls"
import "../theme"

// The commands that the console has at hand: the last ones, or the user's favourites.
//
// history, current     the last commands, and the one that is shown
// recalled(entry)      an entry of the history was chosen
// filled(command, payload), sent(command, payload), copied(text)
// saveWanted()         the user wants the history as a file
ColumnLayout {
    id: lists

    property var history: []
    property int current: -1
    property bool showsFavourites: false

    signal recalled(int entry)
    signal filled(string command, string payload)
    signal sent(string command, string payload)
    signal copied(string text)
    signal saveWanted()

    function textOf(command, payload) {
        return (command + " " + payload).trim();
    }

    // Asks for a name, under which the command becomes a favourite.
    function keep(command, payload, name) {
        showsFavourites = true;
        naming.command = command;
        naming.payload = payload;
        naming.problem = "";
        nameField.text = name;
        naming.visible = true;
        nameField.forceActiveFocus(Qt.OtherFocusReason);
    }

    spacing: Theme.gapTiny

    CommandFavourites { id: favourites }

    RowLayout {
        spacing: Theme.gap

        ToggleChip {
            objectName: "consoleShowHistory"
            text: qsTr("History")
            checked: !lists.showsFavourites
            onClicked: lists.showsFavourites = false
            onToggled: checked = Qt.binding(() => !lists.showsFavourites)
        }
        ToggleChip {
            objectName: "consoleShowFavourites"
            text: qsTr("Favourites")
            onClicked: lists.showsFavourites = true
            checked: lists.showsFavourites
            onToggled: checked = Qt.binding(() => lists.showsFavourites)
        }
        Item { Layout.fillWidth: true }
        DefaultToolButton {
            objectName: "consoleSave"
            Layout.preferredHeight: Theme.smallControlHeight
            visible: !lists.showsFavourites
            enabled: lists.history.length > 0
            font: Theme.captionFont
            text: qsTr("Save…")
            label: qsTr("Save the history with its replies to a file")
            onClicked: lists.saveWanted()
        }
    }

    RowLayout {
        id: naming

        property string command: ""
        property string payload: ""
        property string problem: ""

        function add() {
            problem = favourites.Add(nameField.text, command, payload);
            visible = problem !== "";
            if (!visible)
                favouriteView.forceActiveFocus(Qt.OtherFocusReason);
        }

        visible: false
        spacing: Theme.gap

        DefaultTextField {
            id: nameField

            objectName: "favouriteName"
            Layout.fillWidth: true
            placeholderText: qsTr("Name")
            label: qsTr("Name of the favourite %1").arg(lists.textOf(naming.command, naming.payload))
            problem: naming.problem
            onAccepted: naming.add()
            Keys.onEscapePressed: naming.visible = false
        }
        DefaultButton {
            objectName: "favouriteAdd"
            text: qsTr("Keep")
            onClicked: naming.add()
        }
    }

    PlainText {
        Layout.fillWidth: true
        visible: naming.visible && text !== ""
        text: naming.problem
        font: Theme.captionFont
        color: Theme.errorColor
        wrapMode: Text.Wrap
    }

    CommandList {
        objectName: "consoleHistory"
        Layout.fillWidth: true
        Layout.fillHeight: true
        visible: !lists.showsFavourites
        model: lists.history
        emptyText: qsTr("No command has been answered yet.")
        Accessible.name: qsTr("Command history")

        delegate: HistoryRow {
            required property int index
            required property var modelData

            width: ListView.view.width
            objectName: "history_" + index
            title: modelData.record_time.substring(modelData.record_time.indexOf(" ") + 1)
            text: lists.textOf(modelData.send_cmd_history, modelData.send_payload_history)
            current: index === lists.current || ListView.view.activeFocus && ListView.isCurrentItem
            onRecalled: lists.recalled(index)
            onSentAgain: lists.sent(modelData.send_cmd_history, modelData.send_payload_history)
            onCopied: lists.copied(text)
        }
    }

    CommandList {
        id: favouriteView

        objectName: "consoleFavourites"
        Layout.fillWidth: true
        Layout.fillHeight: true
        visible: lists.showsFavourites
        model: favourites.list
        emptyText: qsTr("Keep… makes a favourite of the command above.")
        Accessible.name: qsTr("Favourite commands")

        delegate: HistoryRow {
            required property int index
            required property var modelData

            width: ListView.view.width
            objectName: "favourite_" + index
            title: modelData.name
            text: lists.textOf(modelData.command, modelData.payload)
            removable: true
            current: ListView.view.activeFocus && ListView.isCurrentItem
            onRecalled: lists.filled(modelData.command, modelData.payload)
            onSentAgain: lists.sent(modelData.command, modelData.payload)
            onRemoved: favourites.Remove(index)
        }
    }
}
