import QtQuick 2.15
import "../theme"

// A thin line that shows that something is waited for, once that has taken a moment. It moves while
// the window lives, and stands still where the window itself waits.
//
// busy   something is waited for
// now    so long is known beforehand: shown at once
Item {
    id: line

    property bool busy: false
    property bool now: false
    readonly property bool shown: now || busy && late.over

    objectName: "busyLine"
    implicitHeight: Theme.focusWidth
    clip: true
    onBusyChanged: late.over = false

    Timer {
        id: late

        property bool over: false

        interval: Theme.busyAfterMs
        running: line.busy && !over
        onTriggered: over = true
    }

    Rectangle {
        anchors.fill: parent
        visible: line.shown
        color: Theme.selectionColor

        Rectangle {
            id: runner

            width: parent.width / 6
            height: parent.height
            color: Theme.accentColor

            NumberAnimation on x {
                running: line.shown && line.visible
                from: -runner.width
                to: line.width
                duration: Theme.spinMs
                loops: Animation.Infinite
            }
        }
    }
}
