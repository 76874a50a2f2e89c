.pragma library

// What a Save brought, from what the lidar held when the page was read again.
//
// rows    the rows that were edited: maps with "name", "place" and "leaf", the variable as it is now,
//         and "taken", whether the lidar took it
// time    of the reading, "hh:mm:ss"

function names(rows) {
    const shown = rows.slice(0, 3).map(row => row.name);
    if (rows.length > shown.length)
        return qsTr("%1 and %2 more").arg(shown.join(", ")).arg(rows.length - shown.length);
    const last = shown.pop();
    return shown.length > 0 ? qsTr("%1 and %2").arg(shown.join(", ")).arg(last) : last;
}

function of(rows, time) {
    const taken = rows.filter(row => row.taken);
    const read = taken.filter(row => row.leaf.state === "read");
    const parts = [
        [read, qsTr("%1 written and read back, %2")],
        [taken.filter(row => row.leaf.state === "written"), qsTr("%1 written, not read back")],
        [taken.filter(row => row.leaf.state === "differs"), qsTr("the lidar holds another value of %1")],
        [rows.filter(row => !row.taken), qsTr("not confirmed by the lidar: %1")]
    ].filter(([some]) => some.length > 0).map(([some, text]) => text.arg(names(some)).replace("%2", time));
    if (taken.some(row => Number(row.leaf.set_cmd) === 0x21))
        parts.push(qsTr("network settings may need a restart of the lidar"));
    const text = parts.join("; ");
    const written = {};
    read.forEach(row => written[row.place] = time.slice(0, 5));
    return { "text": text.charAt(0).toUpperCase() + text.slice(1), "written": written,
             "good": rows.length > 0 && read.length === rows.length };
}
