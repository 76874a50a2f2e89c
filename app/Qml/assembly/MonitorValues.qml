import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../controls"
import "../theme"

// The values in a table, which is the plot's legend as well: the tick decides whether a value is
// drawn. Up and Down move along it, Space ticks.
//
// series   a PlotData
// stale    nothing says that the values are still so
// ofFile   they are those of a recording
// selected the row that stands out in the plot; selectRequested(index) asks for another
FocusScope {
    id: table

    property var series
    property bool stale: false
    property bool ofFile: false
    property int selected: -1

    signal selectRequested(int index)

    onSelectedChanged: list.currentIndex = selected

    component Head: PlainText {
        font: Theme.captionFont
        color: Theme.quietTextColor
        horizontalAlignment: Text.AlignRight
    }

    Row {
        id: header

        anchors.right: parent.right
        anchors.rightMargin: Theme.scrollBarWidth + Theme.gapTiny
        visible: list.count > 0

        Head { width: Theme.monitorNowWidth; text: table.ofFile ? qsTr("last") : qsTr("now") }
        Head { width: Theme.monitorRangeWidth; text: qsTr("min") }
        Head { width: Theme.monitorRangeWidth; text: qsTr("max") }
    }

    ListView {
        id: list

        objectName: "monitorValues"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: header.bottom
        anchors.bottom: parent.bottom
        clip: true
        focus: true
        activeFocusOnTab: true
        keyNavigationEnabled: true
        boundsBehavior: Flickable.StopAtBounds
        highlightMoveDuration: 0
        model: table.series
        T.ScrollBar.vertical: DefaultScrollBar {}

        Accessible.role: Accessible.List
        Accessible.name: qsTr("Values of the monitor")

        Keys.onSpacePressed: if (currentItem) currentItem.toggle()
        Keys.onUpPressed: table.selectRequested(Math.max(0, currentIndex - 1))
        Keys.onDownPressed: table.selectRequested(Math.min(count - 1, currentIndex + 1))

        delegate: MonitorValue {
            width: list.width - Theme.scrollBarWidth - Theme.gapTiny
            stale: table.stale
            current: ListView.isCurrentItem
            hasKeyboard: current && list.activeFocus
            onShowRequested: table.series.Show(index, on)
            onChosen: {
                list.forceActiveFocus(Qt.MouseFocusReason);
                table.selectRequested(index);
            }
        }
    }
}
