import QtQuick 2.15
import "../controls"
import "../theme"
import "ValueHint.js" as ValueHint

// One row of a page: the caption, the editor of the row's kind, and a note at the end of the line.
//
// The row keeps its own copy of the variable it shows, `leaf`, and takes a new one only when it is
// told to. So a page refresh leaves a field alone that the user is typing in, and no row is ever
// rebuilt for a new value.
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
    property string caption: ""
    property int kind: 0
    property int level1: -1
    property int level2: -1
    property int level3: -1
    property var leaf: null

    readonly property bool isFov: leaf !== null && Number(leaf.set_cmd) === Number(fovCommand)
    readonly property bool editable: leaf !== null && leaf.permission !== 0
    readonly property bool pending: leaf !== null && leaf.edited === true
    readonly property bool followsTimer: manager.isTimerUpdate(level1, level2, level3)
    readonly property Item editor: loader.item

    property bool startsGroup: false

    // The row's editor got the keyboard, and should be in view.
    signal entered()
    // The user changed the value.
    signal edited()

    // Shows `freshLeaf`, except in a field that is being typed in.
    function take(freshLeaf) {
        leaf = freshLeaf;
        if (editor === null && (leaf !== null || kind === kindFile || kind === kindMonitor))
            loader.setSource(editorFor(kind), { row: row });
        else if (editor && editor.show)
            editor.show();
    }

    // Records what the user changed; `type` is 1 for a text, 2 for a switch, 3 for a choice.
    function edit(type, text) {
        manager.SetText(type, level1, level2, level3, text);
        take(manager.myMap[level1][level2][level3]);
        edited();
    }

    // Records what is typed and not yet confirmed with Enter.
    function commit() {
        if (editor && editor.commit)
            editor.commit();
    }

    function editorFor(kindOfRow) {
        if (isFov)
            return "FovPanel.qml";
        switch (kindOfRow) {
        case kindSwitch: return "SwitchEditor.qml";
        case kindChoice:
        case kindTallChoice: return "ChoiceEditor.qml";
        case kindFile: return "FileEditor.qml";
        case kindMonitor: return "MonitorEditor.qml";
        default: return "TextEditor.qml";
        }
    }

    // Every group but the first stands a little apart.
    readonly property int groupGap: startsGroup ? Theme.gapWide : 0
    readonly property int lineHeight: isFov ? loader.implicitHeight + Theme.gapWide
                                    : kind === kindTallChoice ? Theme.tallRowHeight : Theme.rowHeight

    implicitHeight: lineHeight + groupGap

    onActiveFocusChanged: if (activeFocus) entered()

    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: Theme.gapWide
        anchors.rightMargin: Theme.gapWide
        y: row.groupGap / 2
        height: Theme.hairline
        visible: row.startsGroup
        color: Theme.outlineColor
    }

    Text {
        id: captionText

        anchors.left: parent.left
        anchors.leftMargin: Theme.gapWide
        anchors.verticalCenter: parent.verticalCenter
        anchors.verticalCenterOffset: row.groupGap / 2
        width: Theme.captionWidth
        text: row.caption
        font: Theme.bodyFont
        color: row.pending ? Theme.pendingColor : Theme.textColor
        elide: Text.ElideRight

        HoverHandler { id: captionHover }
        DefaultToolTip {
            wanted: captionHover.hovered && row.leaf !== null
            text: row.leaf && row.leaf.hint ? row.leaf.hint : row.caption
        }
    }

    Loader {
        id: loader

        anchors.left: captionText.right
        anchors.leftMargin: Theme.gap
        anchors.right: parent.right
        anchors.rightMargin: Theme.gapWide
        anchors.verticalCenter: captionText.verticalCenter
        focus: true
    }
}
