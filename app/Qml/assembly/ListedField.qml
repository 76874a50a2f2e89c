import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../controls"
import "../theme"

// A text that is typed, or picked from a list that drops down below it: by its arrow, Down,
// Alt+Down or F4. The keyboard stays in the field meanwhile, and what is typed there with it.
//
// choices         what to pick from: maps with "label" and "kind", the heading of all of that kind
// listName        what the list holds, for assistive technology
// emptyText       what the list says when there is nothing to pick
// listWanted()    the list is being opened: bring `choices` up to date
// picked(choice)  the user picked one; what was typed and not committed is gone
DefaultTextField {
    id: field

    property var choices: []
    property string listName: ""
    property string emptyText: ""

    signal listWanted()
    signal picked(var choice)

    function openList() {
        if (!activeFocus)
            forceActiveFocus(Qt.OtherFocusReason);
        listWanted();
        entries.currentIndex = choices.length > 0 ? 0 : -1;
        list.open();
    }

    function pick(choice) {
        list.close();
        typing = false;
        revert();
        picked(choice);
    }

    rightPadding: arrow.width + Theme.gapTiny
    // One tooltip at a time.
    isNoted: arrow.hovered || list.visible
    onPressed: list.close()
    onActiveFocusChanged: if (!activeFocus) list.close()

    Keys.forwardTo: list.visible ? [entries] : []
    Keys.onDownPressed: openList()
    Keys.onPressed: {
        event.accepted = event.key === Qt.Key_F4 && event.modifiers === Qt.NoModifier;
        if (event.accepted)
            openList();
    }

    DefaultToolButton {
        id: arrow

        objectName: field.objectName + "Arrow"
        anchors.right: parent.right
        width: Theme.controlHeight
        activeFocusOnTab: false
        focusPolicy: Qt.NoFocus
        iconSize: 3 * Theme.grid
        label: field.listName
        hint: qsTr("%1 (Alt+Down)").arg(label)
        icon.source: "../icons/chevron.svg"
        opened: list.visible
        onClicked: list.visible ? list.close() : field.openList()

        HoverHandler { cursorShape: Qt.ArrowCursor }
    }

    T.Popup {
        id: list

        y: field.height + Theme.radiusSmall
        width: Math.max(field.width, Theme.portListWidth)
        implicitHeight: contentItem.implicitHeight + 2 * padding
        padding: Theme.gapTiny
        margins: Theme.gap
        closePolicy: T.Popup.CloseOnPressOutsideParent

        background: Rectangle {
            color: Theme.trenchColor
            border.width: Theme.hairline
            border.color: Theme.outlineHoverColor
            radius: Theme.radiusSmall
        }

        contentItem: ListView {
            id: entries

            implicitHeight: Math.max(Theme.controlHeight, Math.min(contentHeight, 12 * Theme.controlHeight))
            clip: true
            model: field.choices
            boundsBehavior: Flickable.StopAtBounds
            T.ScrollBar.vertical: DefaultScrollBar {}

            Accessible.role: Accessible.List
            Accessible.name: field.listName

            Keys.onReturnPressed: if (currentItem) currentItem.pick()
            Keys.onEnterPressed: if (currentItem) currentItem.pick()
            Keys.onEscapePressed: list.close()
            Keys.onPressed: {
                event.accepted = event.key === Qt.Key_F4
                                 || (event.key === Qt.Key_Up && event.modifiers === Qt.AltModifier);
                if (event.accepted)
                    list.close();
            }

            delegate: Column {
                id: slot

                required property int index
                required property var modelData
                readonly property string heading: index > 0 && field.choices[index - 1].kind === modelData.kind
                    ? "" : modelData.kind

                function pick() {
                    field.pick(modelData);
                }

                width: ListView.view.width

                PlainText {
                    width: parent.width
                    leftPadding: Theme.gap
                    height: Theme.smallControlHeight
                    verticalAlignment: Text.AlignVCenter
                    visible: slot.heading !== ""
                    text: slot.heading
                    font: Theme.captionFont
                    color: Theme.quietTextColor
                }
                MenuEntry {
                    objectName: field.objectName + "_" + slot.index
                    width: parent.width
                    focusPolicy: Qt.NoFocus
                    text: slot.modelData.label
                    highlighted: slot.ListView.isCurrentItem || hovered
                    onClicked: slot.pick()
                }
            }

            EmptyNote {
                anchors.centerIn: parent
                visible: parent.count === 0
                text: field.emptyText
            }
        }
    }
}
