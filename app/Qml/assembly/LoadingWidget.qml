import QtQuick 2.15
import "../controls"
import "../theme"

// Shows that something is going on: a turning arc, or a bar where the progress is known.
//
// running   whether it is shown at all
// text      what is going on
// progress  0 to 1; negative: not known
Item {
    id: loading

    property bool running: false
    property string text: ""
    property real progress: -1
    readonly property bool determinate: progress >= 0

    visible: running
    implicitWidth: content.implicitWidth
    implicitHeight: content.implicitHeight

    Accessible.role: Accessible.ProgressBar
    Accessible.name: determinate ? qsTr("%1 %2 %").arg(text).arg(Math.round(progress * 100)) : text

    Row {
        id: content

        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.gap

        Icon {
            anchors.verticalCenter: parent.verticalCenter
            visible: !loading.determinate
            source: "../icons/spinner.svg"
            color: Theme.accentColor

            RotationAnimator on rotation {
                running: loading.visible && !loading.determinate
                from: 0
                to: 360
                duration: Theme.spinMs
                loops: Animation.Infinite
            }
        }

        PlainText {
            anchors.verticalCenter: parent.verticalCenter
            visible: text.length > 0
            text: loading.text
            color: Theme.quietTextColor
        }

        ProgressTrack {
            objectName: "progressTrack"
            anchors.verticalCenter: parent.verticalCenter
            visible: loading.determinate
            progress: loading.progress
        }

        PlainText {
            anchors.verticalCenter: parent.verticalCenter
            visible: loading.determinate
            text: qsTr("%1 %").arg(Math.round(loading.progress * 100))
        }
    }
}
