import QtQuick 2.15
import Qt.labs.platform 1.1 as Platform
import Tevron 1.0
import "../controls"
import "../theme"

// Recording the values into a file, and opening such a file again.
FocusScope {
    id: record

    property var manager
    property var source
    readonly property bool running: manager.isMonitorRecording

    function start(folder) {
        manager.startMonitorRecord(folder);
    }

    // Seconds as hours, minutes and seconds.
    function clock(seconds) {
        const two = number => String(number).padStart(2, "0");
        return two(Math.floor(seconds / 3600)) + ":" + two(Math.floor(seconds / 60) % 60) + ":"
               + two(seconds % 60);
    }

    function setSeconds(field, property, lowest, highest) {
        if (InputRules.NumberProblem(field.text, lowest, highest) === "")
            manager[property] = Number(field.text);
        field.revert();
    }

    implicitHeight: title.height + Theme.gap + body.implicitHeight

    PlainText {
        id: title

        text: qsTr("Record")
        font: Theme.boldFont
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: title.bottom
        height: Theme.hairline
        color: Theme.outlineColor
    }

    Column {
        id: body

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        spacing: Theme.gap

        Row {
            id: fields

            spacing: Theme.gap
            visible: !record.running

            LabelledField {
                caption: qsTr("Duration")

                DefaultTextField {
                    id: duration

                    objectName: "recordDuration"
                    width: (body.width - Theme.gap) / 2
                    focus: true
                    value: String(record.manager.monitorRecordDurationSec)
                    unit: qsTr("s")
                    problem: InputRules.NumberProblem(text, 1, 604800)
                    label: qsTr("Duration of the recording in seconds")
                    hint: qsTr("For how long, 1 second to 604800 seconds, a week")
                    onCommitted: record.setSeconds(duration, "monitorRecordDurationSec", 1, 604800)
                }
            }
            LabelledField {
                caption: qsTr("Interval")

                DefaultTextField {
                    id: interval

                    objectName: "recordInterval"
                    width: duration.width
                    value: String(record.manager.monitorRecordIntervalSec)
                    unit: qsTr("s")
                    problem: InputRules.NumberProblem(text, 1, 3600)
                    label: qsTr("Interval of the recording in seconds")
                    hint: qsTr("From one line to the next, 1 second to 3600 seconds, an hour")
                    onCommitted: record.setSeconds(interval, "monitorRecordIntervalSec", 1, 3600)
                }
            }
        }

        Column {
            width: parent.width
            height: fields.height
            visible: record.running
            spacing: Theme.gapTiny

            Row {
                spacing: Theme.gap

                Rectangle {
                    anchors.verticalCenter: parent.verticalCenter
                    width: Theme.lampSize
                    height: width
                    radius: width / 2
                    color: Theme.errorColor
                }
                PlainText {
                    objectName: "recordProgress"
                    text: qsTr("%1 left · %2 samples").arg(record.clock(record.source.recordSecondsLeft))
                                                      .arg(record.source.recordSamples)
                    Accessible.role: Accessible.StaticText
                    Accessible.name: qsTr("Recording: %1").arg(text)
                }
            }
            PlainText {
                width: parent.width
                text: record.source.recordFresh
                      ? record.source.recordFile.replace(/^.*\//, "")
                      : qsTr("No answer: lines repeat the last values.")
                font: Theme.captionFont
                color: record.source.recordFresh ? Theme.quietTextColor : Theme.warningColor
                elide: Text.ElideMiddle
            }
        }

        Row {
            spacing: Theme.gap

            DefaultButton {
                objectName: "recordButton"
                dangerous: record.running
                enabled: record.running || record.manager.IsConnected
                text: record.running ? qsTr("Stop") : qsTr("Record…")
                hint: record.running ? qsTr("End the recording; what is written so far is kept")
                                     : qsTr("Choose a folder and write the values into a CSV file in it")
                onClicked: record.running ? record.manager.stopMonitorRecord() : folderDialog.open()
            }
            DefaultButton {
                objectName: "openRecording"
                enabled: !record.source.opening
                text: record.source.opening ? qsTr("Opening…") : qsTr("Open a recording…")
                hint: qsTr("Look at the values of a CSV file that was recorded before")
                onClicked: fileDialog.open()
            }
        }
    }

    PathDialog {
        id: folderDialog

        title: qsTr("Choose the folder for the recording")
        folder: Platform.StandardPaths.writableLocation(Platform.StandardPaths.DocumentsLocation)
        onChosen: {
            fileDialog.folder = url;
            record.start(url);
        }
    }
    PathDialog {
        id: fileDialog

        title: qsTr("Open a recording")
        folder: folderDialog.folder
        nameFilters: [qsTr("Recordings (*.csv)"), qsTr("All files (*)")]
        onChosen: record.source.Open(url)
    }
}
