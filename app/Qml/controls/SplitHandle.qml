import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../theme"

// The bar between two areas of the window, with which they share the room.
Rectangle {
    implicitWidth: Theme.gapTiny
    implicitHeight: Theme.gapTiny
    color: T.SplitHandle.pressed ? Theme.accentColor
         : T.SplitHandle.hovered ? Theme.outlineHoverColor : Theme.trenchColor
}
