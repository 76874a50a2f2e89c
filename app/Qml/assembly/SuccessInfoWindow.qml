import QtQuick 2.15
import "../controls"
import "../theme"

// What went well, told beside the work: a notice takes no focus and passes by itself, later while
// the pointer is on it. The same notice again is the one that is there, with a count.
//
// show(message, advice)  what was done, and what to do next or ""
// keep(message)          stays until drop(message): something goes on
Column {
    id: notices

    property int stayMs: Theme.noticeMs

    function show(message, advice) {
        add(message, advice || "", false);
    }

    function keep(message) {
        add(message, "", true);
    }

    function drop(message) {
        const at = indexOf(message);
        if (at >= 0)
            list.remove(at);
    }

    function add(message, advice, lasting) {
        const at = indexOf(message);
        if (at >= 0)
            list.setProperty(at, "times", list.get(at).times + 1);
        else
            list.append({ "message": message, "advice": advice, "lasting": lasting, "times": 1 });
        while (list.count > Theme.noticeLimit)
            list.remove(0);
    }

    function indexOf(message) {
        for (let i = 0; i < list.count; ++i) {
            if (list.get(i).message === message)
                return i;
        }
        return -1;
    }

    objectName: "successInfoWindow"
    spacing: Theme.gap

    ListModel { id: list }

    Repeater {
        model: list

        Rectangle {
            id: notice

            required property int index
            required property string message
            required property string advice
            required property bool lasting
            required property int times

            objectName: "quietNotice"
            width: notices.width
            implicitHeight: Math.max(Theme.controlHeight, words.implicitHeight + 2 * Theme.gap)
            radius: Theme.radius
            color: Theme.trenchColor
            border.width: Theme.hairline
            border.color: lasting ? Theme.outlineHoverColor : Theme.successColor
            onTimesChanged: passing.restart()

            Accessible.role: Accessible.AlertMessage
            Accessible.name: message

            HoverHandler { id: pointer }

            Timer {
                id: passing

                interval: notices.stayMs
                running: !notice.lasting && !pointer.hovered
                onTriggered: list.remove(notice.index)
            }

            Icon {
                id: mark

                anchors.left: parent.left
                anchors.leftMargin: Theme.gap
                anchors.verticalCenter: parent.verticalCenter
                source: notice.lasting ? "../icons/info.svg" : "../icons/success.svg"
                color: notice.lasting ? Theme.accentColor : Theme.successColor
            }

            Column {
                id: words

                anchors.left: mark.right
                anchors.right: close.left
                anchors.margins: Theme.gap
                anchors.verticalCenter: parent.verticalCenter

                PlainText {
                    objectName: "noticeText"
                    width: parent.width
                    text: notice.times > 1 ? qsTr("%1 (%2 times)").arg(notice.message).arg(notice.times)
                                           : notice.message
                    wrapMode: Text.Wrap
                }
                PlainText {
                    width: parent.width
                    visible: text.length > 0
                    text: notice.advice
                    font: Theme.captionFont
                    color: Theme.quietTextColor
                    wrapMode: Text.Wrap
                }
            }

            DefaultToolButton {
                id: close

                objectName: "noticeClose"
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                focusPolicy: Qt.NoFocus
                activeFocusOnTab: false
                label: qsTr("Close this notice")
                icon.source: "../icons/close.svg"
                onClicked: list.remove(notice.index)
            }
        }
    }
}
