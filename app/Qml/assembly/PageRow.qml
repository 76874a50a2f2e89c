import QtQuick 2.15
import "../controls"
import "../theme"

// One row of a page: the caption, the editor of the row's kind, and a note at the end of the line.
//
// caption, kind, level1 to 3, leaf and startsGroup are the roles of the page's model. A new value
// changes `leaf` and never rebuilds the row; a field that the user is typing in keeps its text.
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
        || (!editable && kind < kindSwitch && monitor.live.count > 0 && monitor.Draws(caption)))
    required property int index
    required property string caption
    required property int kind
    required property int level1
    required property int level2
    required property int level3
    required property var leaf
    required property bool startsGroup

    readonly property bool isFov: Number(leaf.set_cmd) === Number(fovCommand)
    // Takes the whole width, without a caption.
    readonly property bool isPanel: kind === kindFile
    readonly property bool editable: leaf.permission !== 0
    readonly property bool pending: leaf.edited === true
    // What the value is worth: "unread", "read", "edited", "written" or "differs".
    readonly property string worth: leaf.state || "read"
    readonly property bool unread: worth === "unread"
    // Nothing says that the lidar still holds it.
    readonly property bool stale: !manager.IsConnected && worth !== "edited"
    readonly property string place: level1 + "_" + level2 + "_" + level3

    // What may be entered, where the table gives a range.
    readonly property string range: {
        if (!leaf.range_min && !leaf.range_max)
            return "";
        const text = qsTr("%1 to %2").arg(leaf.range_min).arg(leaf.range_max);
        return kind === kindSwitch && leaf.range_min > 0 ? qsTr("%1, or off").arg(text) : text;
    }

    // What has to be said about the value, in a sentence; empty for an ordinary reading.
    readonly property string news: {
        switch (worth) {
        case "unread":
            return manager.IsConnected ? qsTr("Not read.") : "";
        case "written":
            return qsTr("Written, not read back.");
        case "differs":
            const what = isFov ? qsTr("other angles than were written")
                               : qsTr("%1; %2 was written").arg(label(leaf.current_val))
                                                           .arg(label(leaf.wanted));
            return stale ? qsTr("At %1 the lidar held %2.").arg(leaf.read_at).arg(what)
                         : qsTr("The lidar holds %1.").arg(what);
        default:
            return stale && leaf.read_at ? qsTr("Read at %1.").arg(leaf.read_at) : "";
        }
    }
    readonly property string hint: (news + " " + (leaf.hint || "")).trim()

    // How the row's editor writes a value: a choice has a word for it.
    function label(value) {
        const labels = leaf.varname_value_to_option;
        return labels && labels[value] ? labels[value] : value;
    }

    // The row's editor got the keyboard, and should be in view.
    signal entered()
    // The user changed the value.
    signal edited()

    // Records what the user changed; `type` is 1 for a text, 2 for a switch, 3 for a choice.
    function edit(type, text) {
        manager.SetText(type, level1, level2, level3, text);
        edited();
    }

    // Records what is typed and not yet confirmed with Enter.
    function commit() {
        if (loader.item && loader.item.commit)
            loader.item.commit();
    }

    // Takes the keyboard to what has to be corrected.
    function goToFault() {
        forceActiveFocus();
        if (loader.item && loader.item.goToFault)
            loader.item.goToFault();
    }

    function editorFile() {
        if (isInMonitor)
            return "";
        if (isFov)
            return "FovPanel.qml";
        switch (kind) {
        case kindSwitch: return "SwitchEditor.qml";
        case kindChoice:
        case kindTallChoice: return "ChoiceEditor.qml";
        case kindFile: return "FileEditor.qml";
        default: return leaf.current_val === undefined ? "" : "TextEditor.qml";
        }
    }

    // Every group but the first stands a little apart.
    readonly property int groupGap: startsGroup && index > 0 ? Theme.gapWide : 0
    readonly property int lineHeight: isFov || isPanel ? loader.implicitHeight + Theme.gapWide
                                    : kind === kindTallChoice ? Theme.tallRowHeight : Theme.rowHeight

    implicitHeight: isInMonitor ? 0 : lineHeight + groupGap
    visible: !isInMonitor

    onActiveFocusChanged: if (activeFocus) entered()
    Component.onCompleted: loader.setSource(editorFile(), { row: row })

    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: Theme.gapWide
        anchors.rightMargin: Theme.gapWide
        y: row.groupGap / 2
        height: Theme.hairline
        visible: row.startsGroup && row.index > 0
        color: Theme.outlineColor
    }

    PlainText {
        id: captionText

        anchors.left: parent.left
        anchors.leftMargin: Theme.gapWide
        anchors.verticalCenter: parent.verticalCenter
        anchors.verticalCenterOffset: row.groupGap / 2
        visible: !row.isPanel
        width: Theme.captionWidth
        text: row.caption
        color: row.pending ? Theme.pendingColor : Theme.textColor
        elide: Text.ElideRight

        HoverHandler { id: captionHover }
        DefaultToolTip {
            wanted: captionHover.hovered
            text: row.hint || row.caption
        }
    }

    Loader {
        id: loader

        anchors.left: row.isPanel ? parent.left : captionText.right
        anchors.leftMargin: row.isPanel ? Theme.gapWide : Theme.gap
        anchors.right: parent.right
        anchors.rightMargin: Theme.gapWide
        anchors.verticalCenter: captionText.verticalCenter
        focus: true
    }
}
