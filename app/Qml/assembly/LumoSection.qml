import QtQuick 2.15
import QtQuick.Layouts 1.15
import "../controls"
import "../theme"

// One group of the serial screen: a heading, its controls, and what became of the last reading.
//
// obstacle     why this lidar does not offer the group, in place of its controls; empty when it does
// connected    the lidar is there
// usable       it can be asked for something
// held         what it told when it was last read, in the order of the manager's lists; empty before
// stale        nothing says that it still holds that
// fields       the lines that can be edited
// complete     what stands in them can be set
Panel {
    id: section

    property string title: ""
    property string obstacle: ""
    property bool connected: true
    property bool usable: true
    property var held: []
    property string heldAt: ""
    property string failure: ""
    property bool isReadBack: true
    property string news: !isReadBack ? qsTr("Set at %1, not read back.").arg(heldAt)
                        : failure.length > 0 && heldAt.length > 0
                              ? qsTr("Read at %1, not since: %2.").arg(heldAt).arg(failure)
                        : failure.length > 0 ? qsTr("Not read: %1.").arg(failure)
                        : stale ? qsTr("Read at %1.").arg(heldAt) : ""
    readonly property bool stale: heldAt.length > 0 && (failure.length > 0 || !connected)
    property var fields: []
    readonly property bool edited: fields.some(field => field.edited)
    readonly property bool complete: fields.every(field => field.sound !== false)
    default property alias controls: column.data

    // What a reading brought; with nothing, `reason` says why, and what was known before stays.
    function take(told, reason) {
        failure = told.length > 0 ? "" : reason;
        if (told.length > 0)
            accept(told, true);
    }

    // The lidar holds `values`: it told so, or has just taken them.
    function accept(values, isRead) {
        held = values;
        heldAt = Qt.formatTime(new Date(), "hh:mm:ss");
        isReadBack = isRead;
    }

    // What one lidar told says nothing of the next; what was typed stays.
    function forget() {
        held = [];
        heldAt = "";
        failure = "";
        isReadBack = true;
    }

    function undo() {
        for (const field of fields)
            field.undo();
    }

    Layout.fillWidth: true
    Layout.fillHeight: true
    Layout.preferredWidth: Theme.serialPanelWidth
    implicitHeight: body.implicitHeight + 2 * padding

    content: Column {
        id: body

        width: parent.width
        spacing: Theme.gap

        SectionTitle {
            width: parent.width
            text: section.title
            description: section.obstacle
        }
        PlainText {
            width: parent.width
            visible: text.length > 0
            text: section.news
            font: Theme.captionFont
            color: section.failure.length > 0 ? Theme.warningColor : Theme.quietTextColor
            wrapMode: Text.Wrap
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }

        Column {
            id: column

            width: parent.width
            spacing: Theme.gap
            visible: section.obstacle.length === 0
            enabled: section.usable
        }
    }
}
