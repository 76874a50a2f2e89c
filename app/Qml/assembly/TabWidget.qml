import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../controls"
import "../theme"

// A row of tabs that scrolls when the window is too narrow for all of them. Left, Right, Home and
// End move along it.
//
// titles           the texts, in order
// currentIndex     the selected tab, which the owner sets
// marked           indices of the tabs that hold edits not saved yet
// resting          something else than the selected tab is in view
// selected(index)  the user wants another tab
// clicked()        the user clicked a tab, the selected one too
FocusScope {
    id: tabs

    property var titles: []
    property int currentIndex: 0
    property var marked: []
    property bool resting: false
    // A click needs no frame that shows where the keyboard is.
    property bool byKeyboard: true

    signal selected(int index)
    signal clicked()

    function select(index) {
        if (index >= 0 && index < titles.length && index !== currentIndex)
            selected(index);
    }

    implicitHeight: Theme.controlHeight + Theme.gap
    implicitWidth: list.contentWidth
    activeFocusOnTab: true

    Accessible.role: Accessible.PageTabList
    Accessible.name: qsTr("Pages")

    onActiveFocusChanged: if (!activeFocus) byKeyboard = true

    Keys.onPressed: {
        byKeyboard = true;
        if (event.key === Qt.Key_Left || event.key === Qt.Key_Right) {
            select(currentIndex + (event.key === Qt.Key_Left ? -1 : 1));
            event.accepted = true;
        }
        if (event.key === Qt.Key_Home || event.key === Qt.Key_End) {
            select(event.key === Qt.Key_Home ? 0 : titles.length - 1);
            event.accepted = true;
        }
    }

    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: Theme.hairline
        color: Theme.outlineColor
    }

    ListView {
        id: list

        anchors.fill: parent
        // Above the scroll bar, which would cover the mark of the selected tab.
        anchors.bottomMargin: scrollBar.visible ? scrollBar.height : 0
        orientation: ListView.Horizontal
        clip: contentWidth > width
        spacing: Theme.gapTiny
        boundsBehavior: Flickable.StopAtBounds
        model: tabs.titles
        currentIndex: tabs.currentIndex
        highlightMoveDuration: Theme.fadeMs
        T.ScrollBar.horizontal: DefaultScrollBar {
            id: scrollBar

            parent: tabs
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: parent.bottom
        }

        delegate: T.TabButton {
            id: tab

            readonly property bool current: index === tabs.currentIndex && !tabs.resting

            objectName: "tab" + index
            implicitWidth: caption.implicitWidth + 2 * Theme.gapWide
            width: implicitWidth
            height: list.height
            checkable: false
            focusPolicy: Qt.NoFocus
            hoverEnabled: true
            text: modelData
            onClicked: {
                tabs.byKeyboard = false;
                tabs.forceActiveFocus(Qt.MouseFocusReason);
                tabs.clicked();
                tabs.select(index);
            }

            Accessible.role: Accessible.PageTab
            Accessible.name: text
            Accessible.selected: current

            contentItem: PlainText {
                id: caption

                text: tab.text
                font: tab.current ? Theme.boldFont : Theme.bodyFont
                color: tab.current || tab.hovered ? Theme.textColor : Theme.quietTextColor
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
            }

            background: Rectangle {
                radius: Theme.radius
                color: tab.current ? Theme.panelColor
                     : tab.hovered ? Theme.controlColor : "transparent"

                Rectangle {
                    anchors.left: parent.left
                    anchors.right: parent.right
                    anchors.bottom: parent.bottom
                    height: Theme.focusWidth
                    visible: tab.current
                    color: Theme.accentColor
                }
                Rectangle {
                    anchors.right: parent.right
                    anchors.top: parent.top
                    anchors.margins: Theme.gapTiny
                    width: Theme.gapTiny
                    height: width
                    radius: width / 2
                    visible: tabs.marked.indexOf(index) >= 0
                    color: Theme.pendingColor
                }
                FocusRing {
                    anchors.margins: 0
                    shown: tab.current && tabs.activeFocus && tabs.byKeyboard
                }
            }
        }
    }
}
