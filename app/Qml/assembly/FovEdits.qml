import QtQuick 2.15

// The field-of-view angles that were edited here and are not saved yet. The manager shows ten angles
// and does not tell which of them are edits, so this remembers what it shows for each edited one.
//
// manager      the object that holds the angles (FovList)
// angles       the edits by their index
// cancelled()  the page was read again to be rid of all edits, also of what is only typed
Item {
    id: edits

    property var manager
    property var angles: ({})

    signal cancelled()

    function problemWith(text) {
        const value = Number(text);
        return text.trim().length > 0 && value >= 0 && value <= 360 ? "" : qsTr("0 to 360 degrees");
    }

    // The manager refuses a text with a problem.
    function set(index, text) {
        manager.SetMultiFovConfig(index, text);
        if (problemWith(text) === "")
            angles = Object.assign({}, angles, { [index]: manager.FovList[index] });
    }

    // Hands over again those of `kept` that the manager does not show any more.
    function restore(kept) {
        Object.keys(kept).filter(i => kept[i] !== manager.FovList[i]).forEach(i => set(i, kept[i]));
    }

    Connections {
        target: edits.manager
        // An edit that is not shown any more was taken back.
        function onFovConfigChanged() {
            const left = {};
            for (const i in edits.angles) {
                if (edits.angles[i] === edits.manager.FovList[i])
                    left[i] = edits.angles[i];
            }
            edits.angles = left;
        }
        // Saved edits go on being shown. A Save that failed does not come here.
        function onMyMapChanged() {
            if (edits.manager.getSetMapSize() === 0)
                edits.angles = {};
        }
    }
}
