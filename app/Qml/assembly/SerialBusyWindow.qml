import QtQuick 2.15
import "../controls"

// One box that tells when the serial line is busy, and then that it is free again.
// Both sentences are worded as meant.
DialogFrame {
    id: box

    function tell(busy) {
        message = busy
            ? "Please wait for the PBL version to be obtained. Serial is working. Please wait."
            : "Serial is operation completed. Please processed with other tasks.";
        advice = busy ? qsTr("This box tells when the serial line is free again.") : "";
        open();
    }

    objectName: "serialBusyWindow"
    title: qsTr("Serial line")
    iconSource: "../icons/info.svg"
}
