import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../controls"
import "../theme"

// The rows of a comparison. Up and Down go through them, Space ticks.
//
// rows                    a SettingsRows
// twoSides, withTicks     there is a right side; rows can be ticked
// locked                  the ticks cannot be changed now
// leftTitle, rightTitle   above the two columns of values
FocusScope {
    id: table

    property var rows
    property bool twoSides: true
    property bool withTicks: false
    property bool locked: false
    property string leftTitle: ""
    property string rightTitle: ""
    // Names and outcomes are longer than values.
    readonly property int room: width - 2 * Theme.gapWide - Theme.controlHeight
    readonly property int nameWidth: room * 0.27
    readonly property int valueWidth: room * 0.17

    function tick(row) {
        const item = list.itemAtIndex(row);
        if (item !== null && item.tickable && !locked)
            rows.Tick(row, !item.ticked);
    }

    SettingsRow {
        id: titles

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: Theme.gapWide
        anchors.rightMargin: Theme.gapWide
        isTitle: true
        sheet: table
        name: qsTr("Name")
        leftText: table.leftTitle
        rightText: table.rightTitle
        outcome: table.withTicks ? qsTr("Outcome") : ""
    }

    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: titles.bottom
        height: Theme.hairline
        color: Theme.outlineColor
    }

    ListView {
        id: list

        objectName: "settingsRows"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: Theme.gapWide
        anchors.rightMargin: Theme.gapWide
        anchors.top: titles.bottom
        anchors.bottom: parent.bottom
        focus: true
        activeFocusOnTab: true
        clip: true
        model: table.rows
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: DefaultScrollBar {}
        // Rows that come take no place of the keyboard by themselves.
        onCountChanged: if (currentIndex < 0 && count > 0) currentIndex = 0
        Keys.onSpacePressed: table.tick(currentIndex)
        Keys.onPressed: {
            const pages = { [Qt.Key_PageUp]: -1, [Qt.Key_PageDown]: 1 };
            const ends = { [Qt.Key_Home]: 0, [Qt.Key_End]: count - 1 };
            if (pages[event.key] !== undefined)
                currentIndex = Math.max(0, Math.min(count - 1,
                    currentIndex + pages[event.key] * Math.floor(height / Theme.rowHeight)));
            else if (ends[event.key] !== undefined)
                currentIndex = ends[event.key];
            else
                return;
            event.accepted = true;
        }

        delegate: SettingsRow {
            required property int index
            required property var model

            readonly property bool tickable: model.tickable

            objectName: "settingsRow_" + index
            width: ListView.view.width
            sheet: table
            name: model.name
            page: model.page
            leftText: model.left !== "" || model.kind === "right" ? model.left : Theme.unreadText
            rightText: model.right !== "" || model.kind === "left" ? model.right : Theme.unreadText
            unit: model.unit
            differs: model.kind !== "equal" && table.twoSides
            canTick: table.withTicks && model.tickable
            ticked: model.ticked
            outcome: model.outcome
            tone: model.tone
            current: ListView.isCurrentItem && list.activeFocus
            onClicked: {
                list.currentIndex = index;
                list.forceActiveFocus(Qt.MouseFocusReason);
            }
            onTickWanted: table.tick(index)
        }
    }

    EmptyNote {
        anchors.centerIn: list
        width: list.width
        visible: list.count === 0
        text: table.rows.equal && table.twoSides && table.rows.filter === ""
            ? qsTr("Every setting is the same on both sides.")
            : qsTr("No row is left. Clear the filter, or show more than what differs.")
    }
}
