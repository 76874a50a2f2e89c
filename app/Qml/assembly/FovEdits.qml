import QtQuick 2.15

// The field-of-view angles that were edited here and are not saved yet. The manager shows ten angles
// and does not tell which of them are edits, so this remembers what it shows for each edited one, and
// the texts that it did not take.
//
// manager      the object that holds the angles (FovList)
// releasing    what the manager takes back now is meant to go; at other times it is handed over again
// angles       the edits by their index
// held         what was there before each of them
// refused      the texts that are no angles, by their index
Item {
    id: edits

    property var manager
    property bool releasing: false
    property var angles: ({})
    property var held: ({})
    property var refused: ({})
    readonly property int editCount: Object.keys(angles).length
    readonly property int faultCount: Object.keys(refused).length
    property bool handing: false

    // The page was read again to be rid of all edits, also of what is only typed.
    signal cancelled()

    function problemWith(text) {
        const isPlain = /^\s*[+-]?(\d+\.?\d*|\.\d+)(e[+-]?\d+)?\s*$/i.test(text);
        return isPlain && Number(text) >= 0 && Number(text) <= 360 ? ""
             : text.indexOf(",") >= 0 ? qsTr("0 to 360, point as decimal sign") : qsTr("0 to 360 degrees");
    }

    function without(map, index) {
        const left = Object.assign({}, map);
        delete left[index];
        return left;
    }

    // Keeps a text that is no angle, to be corrected.
    function refuse(index, text) {
        refused = Object.assign({}, refused, { [index]: text });
    }

    // The manager says why it refuses a text with a problem. The angle that was there before takes
    // the edit back.
    function set(index, text) {
        if (problemWith(text) !== "") {
            // Its message takes the keyboard away, so this comes first.
            refuse(index, text);
            manager.SetMultiFovConfig(index, text);
            return;
        }
        refused = without(refused, index);
        if (angles[index] === undefined)
            held[index] = manager.FovList[index];
        handing = true;
        manager.SetMultiFovConfig(index, text);
        handing = false;
        const shown = manager.FovList[index];
        angles = shown === held[index] ? without(angles, index)
                                       : Object.assign({}, angles, { [index]: shown });
    }

    // Gives up a text that was refused.
    function forget(index) {
        refused = without(refused, index);
    }

    function clear() {
        angles = {};
        refused = {};
        cancelled();
    }

    // Hands all of them over again: a Save that failed has dropped its orders.
    function handOver() {
        Object.keys(angles).forEach(i => set(i, angles[i]));
    }

    // Hands over again those of `kept` that the manager does not show any more.
    function restore(kept) {
        Object.keys(kept).filter(i => kept[i] !== manager.FovList[i]).forEach(i => {
            held[i] = manager.FovList[i];
            set(i, kept[i]);
        });
    }

    Connections {
        target: edits.manager
        function onFovConfigChanged() {
            if (edits.handing)
                return;
            if (!edits.releasing) {
                edits.restore(edits.angles);
                return;
            }
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
