import QtQuick 2.15
import "../controls"
import "../theme"
import "RowEditors.js" as RowEditors

// One row of a page: the caption, the editor of the row's kind, the unit, and a note. Above the first
// row of a group stands the group's caption.
//
// index, caption, kind, level1 to 3 and leaf are the roles of the page's model. A new value changes
// `leaf` and never rebuilds the row; a field that the user is typing in keeps its text.
// heading     what stands above the group, and headHeight the room for it
// linked      the row was found: its caption leads to its page, where panels have their editors
// locked      it cannot be changed now
// writtenAt   when the value was read back after the last Save; empty otherwise
FocusScope {
    id: row

    // Row kinds of the page model that are no plain text field.
    readonly property int kindSwitch: 2
    readonly property int kindChoice: 3
    readonly property int kindFile: 4
    readonly property int kindTallChoice: 5
    readonly property int kindMonitor: 7
    readonly property string fovCommand: "0x22"

    property var manager
    // The window's UpgradeControl, for a firmware row.
    property var upgrade
    // The page's FovEdits.
    property var fovEdits
    // On the page of a monitor: its MonitorSource, whose numbers are shown by the monitor itself.
    // Texts, choices and what can be changed keep their rows.
    property var monitor: null
    readonly property bool isInMonitor: monitor !== null && (kind === kindMonitor
        || (!editable && kind < kindSwitch && monitor.live.count > 0
            && monitor.Draws(caption + (leaf.unit_suffix || ""))))
    property int index: -1
    property string caption: ""
    property int kind: 0
    property int level1: 0
    property int level2: 0
    property int level3: 0
    property var leaf: ({})
    property string heading: ""
    property int headHeight: 0
    property bool linked: false
    property bool locked: false
    property string writtenAt: ""

    readonly property bool isFov: Number(leaf.set_cmd) === Number(fovCommand)
    // Takes the whole width, without a caption.
    readonly property bool isPanel: !linked && (kind === kindFile || isFov)
    readonly property bool isTall: kind === kindTallChoice
    readonly property bool editable: leaf.permission !== 0 && leaf.editable !== false
    readonly property bool pending: leaf.edited === true
    // The editor holds a text that is not handed over yet.
    readonly property bool typed: loader.item !== null && loader.item.typed === true
    // What the value is worth: "unread", "read", "edited", "written" or "differs".
    readonly property string worth: leaf.state || "read"
    readonly property bool unread: worth === "unread"
    // Nothing says that the lidar still holds it.
    readonly property bool stale: !manager.IsConnected && worth !== "edited"
    readonly property string place: level1 + "_" + level2 + "_" + level3
    readonly property string valueText: unread ? Theme.unreadText : label(leaf.current_val)

    readonly property int lineHeight: isInMonitor ? 0
                                    : isPanel ? loader.implicitHeight + Theme.gap
                                    : isTall ? Theme.tallRowHeight : Theme.rowHeight

    readonly property bool isFaulty: loader.item !== null && loader.item.verdict !== undefined
                                     && loader.item.verdict.impossible === true

    // How the row writes a value: a choice has a word for it, and a switch without a number.
    function label(value) {
        const labels = leaf.varname_value_to_option;
        if (labels && labels[value])
            return labels[value];
        return kind === kindSwitch && (value === "0" || leaf.range_max <= 1)
             ? (value === "0" ? qsTr("Off") : qsTr("On")) : value || "";
    }

    // The row's editor got the keyboard, and should be in view.
    signal entered()
    // The user changed the value.
    signal edited()
    // A key that the editor has no use for.
    signal scrollAsked(int key)
    // The row is to be seen on its page.
    signal pageWanted()

    // Records what the user changed; `type` is 1 for a text, 2 for a switch, 3 for a choice.
    function edit(type, text) {
        manager.SetText(type, level1, level2, level3, text);
        edited();
    }

    // Takes the edit back, and what is typed.
    function undo() {
        if (typed)
            loader.item.drop();
        forceActiveFocus();
        if (pending)
            edit(1, leaf.reading);
    }

    // Records what is typed and not yet confirmed with Enter.
    function commit() {
        if (loader.item && loader.item.commit)
            loader.item.commit();
    }

    // Takes the keyboard, to the caption where no editor would have it.
    function takeKeyboard() {
        (captionText.takesKeyboard ? captionText : loader).forceActiveFocus(Qt.ShortcutFocusReason);
    }

    // Takes the keyboard to what has to be corrected.
    function goToFault() {
        forceActiveFocus();
        if (loader.item && loader.item.goToFault)
            loader.item.goToFault();
    }

    implicitHeight: headHeight + lineHeight
    visible: !isInMonitor

    onActiveFocusChanged: if (activeFocus) entered()
    Component.onCompleted: loader.setSource(RowEditors.fileFor(row), { row: row })

    GroupHead {
        width: parent.width
        height: row.headHeight
        text: row.heading
    }

    Item {
        id: line

        y: row.headHeight
        width: parent.width
        height: row.lineHeight

        RowCaption {
            id: captionText

            anchors.verticalCenter: loader.verticalCenter
            visible: !row.isPanel
            width: Theme.captionWidth
            row: row
            takesKeyboard: loader.item === null || !loader.enabled
        }

        Loader {
            id: loader

            readonly property bool isLong: row.isTall || (!row.editable && note.text.length === 0
                                                          && unitText.text.length === 0)

            anchors.left: row.isPanel ? parent.left : captionText.right
            anchors.leftMargin: row.isPanel ? 0 : Theme.gap
            y: row.isPanel ? 0 : (Theme.rowHeight - height) / 2
            width: row.isPanel ? parent.width
                 : isLong ? Math.min(parent.width - x, 2 * Theme.rowFieldWidth) : Theme.rowFieldWidth
            focus: true
            enabled: !row.locked || !row.editable
        }

        PlainText {
            id: unitText

            anchors.left: loader.right
            anchors.leftMargin: Theme.gap
            anchors.verticalCenter: loader.verticalCenter
            visible: !row.isPanel
            width: Theme.unitWidth
            text: row.leaf.unit || ""
            color: Theme.quietTextColor
            elide: Text.ElideRight
        }

        RowNote {
            id: note

            anchors.left: row.isTall ? loader.left : unitText.right
            anchors.leftMargin: row.isTall ? 0 : Theme.gap
            anchors.right: row.isTall ? loader.right : parent.right
            y: row.isTall ? loader.y + loader.height : loader.y
            height: row.isTall ? row.lineHeight - y - Theme.gap : loader.height
            visible: !row.isPanel
            row: row
            editor: loader.item
        }
    }
}
