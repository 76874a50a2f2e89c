import QtQuick 2.15
import QtQuick.Controls.impl 2.15
import "../theme"

// A small arrow that points down, or sideways when rotated.
ColorImage {
    color: Theme.quietTextColor
    source: "../icons/chevron.svg"
    sourceSize.width: 3 * Theme.grid
    sourceSize.height: 3 * Theme.grid
}
