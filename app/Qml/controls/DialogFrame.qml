import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "../theme"

// What every message box shares: a title, what happened, what to do next, and a row of buttons.
// Enter takes the main button, Escape the way out. A guarded box makes the way out its main button,
// so that nothing is lost by a hasty Enter. It opens in the middle of the window.
//
// otherText  a third answer; left out while empty
// dangerous  the answer named by acceptText cannot be taken back; the box is guarded then
// other()    the third answer was given
T.Dialog {
    id: frame

    property string message: ""
    property string advice: ""
    property url iconSource: ""
    property color tone: Theme.accentColor
    property string acceptText: qsTr("OK")
    property string rejectText: qsTr("Cancel")
    property bool cancellable: false
    property string otherText: ""
    property bool dangerous: false
    property bool guarded: dangerous
    // What a special box shows between the advice and the buttons.
    property alias extra: extraSlot.data

    signal other()

    parent: T.Overlay.overlay
    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: parent ? Math.round((parent.height - height) / 2) : 0
    width: parent ? Math.min(Theme.dialogWidth, parent.width - 2 * Theme.gapWide) : Theme.dialogWidth
    height: Math.min(implicitHeight, parent ? parent.height - 2 * Theme.gapWide : implicitHeight)
    implicitHeight: implicitHeaderHeight + implicitContentHeight + implicitFooterHeight
                    + topPadding + bottomPadding
    padding: Theme.gapWide
    modal: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape
    font: Theme.bodyFont

    // The button that answered the last question has kept the keyboard: it is not to take a hasty
    // Enter before the right one has it, and the mark is to be seen even if it is the same.
    onAboutToShow: contentItem.focus = true
    onOpened: {
        const button = guarded ? rejectButton : acceptButton;
        button.forceActiveFocus(Qt.TabFocusReason);
        button.focusReason = Qt.TabFocusReason;
    }

    T.Overlay.modal: Rectangle { color: Theme.dimmingColor }

    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.fadeMs }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.fadeMs }
    }

    background: Rectangle {
        radius: Theme.radius
        color: Theme.windowColor
        border.width: Theme.hairline
        border.color: Theme.outlineHoverColor
    }

    header: Item {
        implicitHeight: Theme.barHeight

        Rectangle {
            anchors.fill: parent
            anchors.margins: Theme.hairline
            radius: Theme.radius
            color: Theme.trenchColor
        }
        Rectangle {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            height: Theme.focusWidth
            color: frame.tone
        }
        Icon {
            id: headerIcon

            anchors.verticalCenter: parent.verticalCenter
            anchors.left: parent.left
            anchors.leftMargin: Theme.gapWide
            visible: frame.iconSource.toString().length > 0
            width: visible ? size : 0
            source: frame.iconSource
            color: frame.tone
        }
        PlainText {
            anchors.verticalCenter: parent.verticalCenter
            anchors.left: headerIcon.right
            anchors.right: parent.right
            anchors.leftMargin: headerIcon.visible ? Theme.gap : 0
            anchors.rightMargin: Theme.gapWide
            text: frame.title
            font: Theme.titleFont
            elide: Text.ElideRight
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
    }

    contentItem: Flickable {
        implicitHeight: body.implicitHeight
        contentWidth: width
        contentHeight: body.implicitHeight
        clip: contentHeight > height
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: DefaultScrollBar {}

        Column {
            id: body

            width: frame.availableWidth
            spacing: Theme.gapWide

            PlainText {
                objectName: "dialogMessage"
                width: parent.width
                visible: text.length > 0
                text: frame.message
                wrapMode: Text.Wrap
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            PlainText {
                objectName: "dialogAdvice"
                width: parent.width
                visible: text.length > 0
                text: frame.advice
                color: Theme.quietTextColor
                wrapMode: Text.Wrap
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            Column {
                id: extraSlot

                width: parent.width
                visible: children.length > 0
                spacing: Theme.gap
            }
        }
    }

    footer: Item {
        implicitHeight: Theme.controlHeight + 2 * Theme.gapWide

        Row {
            anchors.right: parent.right
            anchors.rightMargin: Theme.gapWide
            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.gap

            DefaultButton {
                objectName: "dialogOther"
                visible: text.length > 0
                dangerous: true
                text: frame.otherText
                onClicked: {
                    frame.close();
                    frame.other();
                }
            }
            DefaultButton {
                id: rejectButton

                objectName: "dialogReject"
                visible: frame.cancellable
                emphasised: frame.guarded
                text: frame.rejectText
                onClicked: frame.reject()
            }
            DefaultButton {
                id: acceptButton

                objectName: "dialogAccept"
                emphasised: !frame.guarded
                dangerous: frame.dangerous
                text: frame.acceptText
                onClicked: frame.accept()
            }
        }
    }
}
