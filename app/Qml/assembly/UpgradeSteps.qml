import QtQuick 2.15
import "../controls"
import "../theme"

// The steps of an upgrade and how each of them stands, in as many lines as they need.
//
// steps  maps with "name" and "state": "pending", "running", "done", "failed" or "skipped"
Flow {
    id: list

    property var steps: []

    readonly property var words: ({ "pending": qsTr("still to come"), "running": qsTr("under way"),
                                    "done": qsTr("done"), "failed": qsTr("failed"),
                                    "skipped": qsTr("left out") })
    readonly property var icons: ({ "running": "spinner", "done": "success", "failed": "error",
                                    "skipped": "skipped", "pending": "pending" })
    readonly property var colors: ({ "running": Theme.accentColor, "done": Theme.successColor,
                                     "failed": Theme.errorColor, "skipped": Theme.disabledTextColor,
                                     "pending": Theme.disabledTextColor })

    objectName: "upgradeSteps"
    spacing: Theme.gap

    Repeater {
        model: list.steps.length

        Row {
            readonly property var step: list.steps[index] || ({ "name": "", "state": "pending" })
            readonly property bool turning: visible && step.state === "running"

            rightPadding: Theme.gapWide
            spacing: Theme.gap
            Accessible.role: Accessible.StaticText
            Accessible.name: qsTr("%1: %2").arg(step.name).arg(list.words[step.state])

            Icon {
                id: mark

                source: "../icons/" + list.icons[parent.step.state] + ".svg"
                color: list.colors[parent.step.state]

                RotationAnimator on rotation {
                    running: mark.parent.turning
                    from: 0
                    to: 360
                    duration: Theme.spinMs
                    loops: Animation.Infinite
                    onRunningChanged: if (!running) mark.rotation = 0
                }
            }
            PlainText {
                anchors.verticalCenter: mark.verticalCenter
                text: parent.step.name
                color: parent.step.state === "pending" || parent.step.state === "skipped"
                       ? Theme.quietTextColor : Theme.textColor
                Accessible.ignored: true
            }
        }
    }
}
