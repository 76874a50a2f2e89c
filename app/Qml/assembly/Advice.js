.pragma library

// What to do next after each kind of failure, by a piece of its message. The first that fits counts.
// Nothing is said here that the message alone does not make certain.
const byMessage = [
    ["Please connect to lidar first",
     qsTr("Say at the top how the lidar is reached and press Connect.")],
    ["not connected",
     qsTr("Connect at the top, or wait until the upgrade has ended; then try again.")],
    ["Connection Failed",
     qsTr("Check power and cable, and that nothing else holds the connection; then press Connect.")],
    ["TCP connection failed",
     qsTr("Check power, cable, address and port; then press Connect.")],
    ["Lidar has No CMX reply",
     qsTr("Check that address and port are the lidar's own, and whether it has started.")],
    ["Is Connecting Lidar",
     qsTr("The lamp at the top turns green once the lidar has answered. Cancel or Escape ends the "
          + "attempt.")],
    ["Lidar is upgrading",
     qsTr("Leave power and connection alone until the upgrade has ended.")],
    ["Please wait for the lidar to upgrade",
     qsTr("Leave power and connection alone; try again once the upgrade has ended.")],
    ["Please wait for the operation log",
     qsTr("Try again once the download has ended.")],
    ["Operation log download failed",
     qsTr("The log names each part that was saved, and why another one was not.")],
    ["Failed to open file",
     qsTr("The log names the reason; another folder may do.")],
    ["Failed to write binary data",
     qsTr("No file was made; the log names the reason.")],
    ["create calibration file fail",
     qsTr("The log names the reason; another folder may do.")],
    ["download failed. return code",
     qsTr("A code above 0 is the lidar's own: it refused. Any other means that no whole answer came.")],
    ["Can not find",
     qsTr("The table of this model, which About names, does not say how to ask for it.")],
    ["Nothing to be saved",
     qsTr("Change a value on this page first. Edited values are marked.")],
    ["Set Failed",
     qsTr("What the lidar did not confirm is still marked as edited. The log names the command "
          + "that failed.")],
    ["Query cmx command fail",
     qsTr("The console tells what became of the command.")],
    ["Parsing failed",
     qsTr("Write the command as one or two hexadecimal digits, the payload as such pairs.")],
    ["Input value of fov",
     qsTr("Enter degrees from 0 to 360 as a plain number, such as 12.5.")],
    ["check your config file",
     qsTr("Correct the row that holds this value in the model's table, which About names.")],
    ["No variables could be loaded",
     qsTr("Check the model's table, which About names, or choose another model.")],
    ["Auto reboot failed",
     qsTr("The file was sent. Switch the lidar's power off and on, connect again, and compare the "
          + "version that it shows.")],
    ["transfer failed or is terminated",
     qsTr("The upgrade panel tells how far it came and what is known of the lidar. Check power and "
          + "cable, connect again if need be, and start the upgrade once more.")],
    ["Invalid Kiva OTA upgrade package",
     qsTr("Nothing was sent. Choose the upgrade package that came for this model; the log says what "
          + "is wrong with this one.")],
    ["Upgrade package too small",
     qsTr("Nothing was sent. Choose the upgrade package that came for this model.")],
    ["Failed to open upgrade file",
     qsTr("Check that the file is still there and may be read, and choose it again.")],
    ["no component matches current upgrade plan",
     qsTr("The package holds nothing for the partition that the lidar does not run. Choose a "
          + "complete package.")],
    ["Kiva upgrade: ",
     qsTr("The upgrade panel tells which components were taken. Check power and cable, and start "
          + "the upgrade once more.")],
    [".patch file",
     qsTr("Choose the upgrade package that came for this model.")],
    ["no answer from the lidar",
     qsTr("Check the lidar's power and cable; after a restart it needs a while. Then try again.")],
    ["lidar return code",
     qsTr("The lidar answered, and refused.")],
];

// What to do next after a success, by a piece of its message.
const bySuccess = [
    ["Upgrade package transmitted",
     qsTr("Leave the power on. The upgrade panel tells which version the lidar runs once it is back.")],
    ["restart command was not acknowledged",
     qsTr("The upgrade panel tells which versions the lidar runs, once it answers.")],
    ["Kiva upgrade completed",
     qsTr("Leave the power on. The upgrade panel tells which versions the lidar runs once it is back.")],
];

function find(entries, message) {
    const found = entries.find(entry => message.indexOf(entry[0]) >= 0);
    return found === undefined ? "" : found[1];
}

// Whether a message tells of an attempt to connect that failed.
function isOfConnecting(message) {
    return ["TCP connection failed.", "Lidar has No CMX reply.", "Connection Failed."]
        .some(beginning => message.startsWith(beginning));
}

// The advice for a message; "" where nothing is known.
function forMessage(message) { return find(byMessage, message); }
function forSuccess(message) { return find(bySuccess, message); }
