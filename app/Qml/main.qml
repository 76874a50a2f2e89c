import QtQuick 2.15
import "theme"

Rectangle {
    color: Theme.windowColor
}
