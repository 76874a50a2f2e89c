import QtQuick 2.15
import "../theme"

// Where the rows of a page lie: its groups one below the other, or in two columns that are read one
// after the other and are as alike in height as whole groups allow.
//
// shape    for each row its "kind", and whether it "starts" a group that is "captioned"; see PageRows
// columns  1 or 2
// heights  by row, the height of a row's line that is not the usual one of its kind
// tops     by row, where it begins, the head of its group included
// heads    by row, the height of that head
// right    the first row of the second column
// height   of the whole
QtObject {
    id: layout

    property var shape: []
    property int columns: 1
    property var heights: ({})
    property var places: ({ "tops": [], "heads": [], "right": 0, "height": 0 })
    readonly property var tops: places.tops
    readonly property var heads: places.heads
    readonly property int right: places.right
    readonly property real height: places.height

    readonly property int kindTallChoice: 5

    function start(rows) {
        heights = {};
        shape = rows;
    }

    // A row tells how high its line is.
    function tell(row, height) {
        if (row < 0 || row >= shape.length || lineHeight(row) === height)
            return;
        heights = Object.assign({}, heights, { [row]: height });
        // Rows are told of their places while they are made: not in the middle of that.
        Qt.callLater(arrange);
    }

    onShapeChanged: arrange()
    onColumnsChanged: arrange()

    function lineHeight(row) {
        return heights[row] !== undefined ? heights[row]
             : shape[row].kind === kindTallChoice ? Theme.tallRowHeight : Theme.rowHeight;
    }

    // Whether anything of the group that begins at this row is to be seen.
    function isShown(row) {
        let i = row;
        while (lineHeight(i) === 0 && i + 1 < shape.length && !shape[i + 1].starts)
            ++i;
        return lineHeight(i) > 0;
    }

    function headHeight(row, isFirst) {
        if (!shape[row].starts || !isShown(row))
            return 0;
        return (isFirst ? 0 : Theme.gapWide) + (shape[row].captioned ? Theme.groupHeadHeight : 0);
    }

    // The row that begins the second column: the higher of the two is as low as it can be.
    function split() {
        let total = 0;
        const above = shape.map((row, i) => {
            const top = total;
            total += headHeight(i, i === 0) + lineHeight(i);
            return top;
        });
        let best = shape.length;
        let lowest = total;
        for (let i = 1; i < shape.length; ++i) {
            const higher = Math.max(above[i], total - above[i]);
            if (shape[i].starts && higher < lowest) {
                best = i;
                lowest = higher;
            }
        }
        return best;
    }

    function arrange() {
        const second = columns > 1 ? split() : shape.length;
        const made = { "tops": [], "heads": [], "right": second, "height": 0 };
        let y = 0;
        for (let i = 0; i < shape.length; ++i) {
            const isFirst = i === 0 || i === second;
            if (isFirst)
                y = 0;
            made.tops.push(y);
            made.heads.push(headHeight(i, isFirst));
            y += made.heads[i] + lineHeight(i);
            made.height = Math.max(made.height, y);
        }
        places = made;
    }
}
