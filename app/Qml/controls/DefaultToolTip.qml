import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import QtQuick.Window 2.15
import Tevron 1.0
import "../theme"

// One look for every tooltip. `wanted` says that the pointer or the keyboard is on the control. It goes
// at the next press of a key or button and with its control, and never covers another control: where
// there is no room beside its own, it does not come.
T.ToolTip {
    id: tip

    property bool wanted: false

    property bool dismissed: false
    readonly property Item scene: parent ? parent.Window.contentItem : null

    // One that is about to show cannot be kept back any more, but its control may have moved.
    onWantedChanged: if (wanted) place()
    onAboutToShow: place()

    function isControl(item) {
        return item.activeFocusOnTab && item.enabled && item !== parent;
    }

    // Whether a control lies under the area, in coordinates of the scene.
    function covers(item, area) {
        if (!item.visible || item === tip.contentItem.parent)
            return false;
        if (isControl(item)) {
            const at = item.mapToItem(scene, 0, 0);
            if (at.x < area.x + area.width && area.x < at.x + item.width
                    && at.y < area.y + area.height && area.y < at.y + item.height)
                return true;
        }
        return Array.from(item.children).some(child => covers(child, area));
    }

    function place() {
        const at = parent.mapToItem(scene, 0, 0);
        const rightmost = scene.width - implicitWidth - margins;
        const left = Math.max(margins, Math.min(at.x, rightmost));
        const right = Math.max(margins, Math.min(at.x + parent.width - implicitWidth, rightmost));
        const below = at.y + parent.height + Theme.gapTiny;
        const above = at.y - implicitHeight - Theme.gapTiny;
        const middle = at.y + (parent.height - implicitHeight) / 2;
        const places = [[left, below], [right, below], [left, above], [right, above],
                        [at.x + parent.width + Theme.gapTiny, middle],
                        [at.x - implicitWidth - Theme.gapTiny, middle]];
        const free = places.find(([x, y]) => x >= margins && y >= margins
            && x + implicitWidth <= scene.width - margins
            && y + implicitHeight <= scene.height - margins
            && !covers(scene, Qt.rect(x, y, implicitWidth, implicitHeight)));
        dismissed = free === undefined;
        if (free !== undefined) {
            x = free[0] - at.x;
            y = free[1] - at.y;
        }
    }

    visible: wanted && parent !== null && parent.visible && !dismissed && text.length > 0
    delay: Theme.toolTipDelayMs
    margins: Theme.gap
    padding: Theme.gap
    implicitWidth: Math.min(contentItem.implicitWidth, Theme.toolTipWidth) + leftPadding + rightPadding
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    font: Theme.captionFont
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent

    Connections {
        target: PressWatch
        enabled: tip.wanted
        function onPressed() { tip.dismissed = true; }
    }

    contentItem: PlainText {
        // Known before it is shown, so that its place suits all its lines.
        width: Math.min(implicitWidth, Theme.toolTipWidth)
        text: tip.text
        font: tip.font
        wrapMode: Text.Wrap
    }

    background: Rectangle {
        color: Theme.wellColor
        border.width: Theme.hairline
        border.color: Theme.outlineHoverColor
        radius: Theme.radiusSmall
    }
}
