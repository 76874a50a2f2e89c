.pragma library

// The file of the editor that a row of a page needs; empty for none. See PageRow.
function fileFor(row) {
    const isPanel = row.isFov || row.kind === row.kindFile || row.kind === row.kindMonitor;
    if (row.isInMonitor || (row.linked && isPanel))
        return "";
    if (row.isFov)
        return "FovPanel.qml";
    if (row.kind === row.kindFile)
        return "FileEditor.qml";
    if (row.leaf.current_val === undefined)
        return "";
    if (!row.editable)
        return "ValueText.qml";
    switch (row.kind) {
    case row.kindSwitch: return "SwitchEditor.qml";
    case row.kindChoice:
    case row.kindTallChoice: return "ChoiceEditor.qml";
    default: return "TextEditor.qml";
    }
}
