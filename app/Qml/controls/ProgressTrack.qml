import QtQuick 2.15
import "../theme"

// How far something has come: `progress` goes from 0 to 1.
Rectangle {
    id: track

    property real progress: 0

    implicitWidth: Theme.fieldWidth
    implicitHeight: Theme.gap
    radius: height / 2
    color: Theme.wellColor
    border.width: Theme.hairline
    border.color: Theme.outlineColor

    Rectangle {
        objectName: "progressBar"
        width: Math.max(height, parent.width * Math.min(1, Math.max(0, track.progress)))
        height: parent.height
        radius: height / 2
        color: Theme.accentColor
    }
}
