import QtQuick 2.15
// The import below is registered by this one.
import QtQuick.Controls 2.15
import QtQuick.Controls.impl 2.15
import "../theme"

// A one-colour symbol from the icons folder, given as `source`; its strokes take `color`.
ColorImage {
    property int size: Theme.iconSize

    width: size
    height: size
    sourceSize.width: size
    sourceSize.height: size
    color: Theme.textColor
}
