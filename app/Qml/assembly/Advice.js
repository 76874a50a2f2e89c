.pragma library

// What to do next after each kind of failure, by a piece of its message. The first that fits counts.
const byMessage = [
    ["Please connect to lidar first",
     qsTr("Say at the top how the lidar is reached and press Connect.")],
    ["not connected",
     qsTr("Say at the top how the lidar is reached and press Connect; then try again.")],
    ["Connection Failed",
     qsTr("Check power and cable, and that nothing else holds the connection; then press Connect.")],
    ["TCP connection failed",
     qsTr("Check power, cable, address and port; then press Connect.")],
    ["Is Connecting Lidar",
     qsTr("The lamp at the top turns green once the lidar has answered.")],
    ["Lidar is upgrading",
     qsTr("Leave power and connection alone until the upgrade has ended.")],
    ["Please wait for the lidar to upgrade",
     qsTr("Leave power and connection alone; try again once the upgrade has ended.")],
    ["Please wait for the operation log",
     qsTr("Try again once the download has ended.")],
    ["Operation log download failed",
     qsTr("The log names the part that failed and the reason. The parts before it are saved.")],
    ["Failed to open file",
     qsTr("Choose a folder that exists and may be written to; the log names the reason.")],
    ["Failed to write binary data",
     qsTr("The disk may be full. Nothing was saved; the log names the reason.")],
    ["create calibration file fail",
     qsTr("Choose a folder that exists and has room; the log names the reason.")],
    ["download failed. return code",
     qsTr("Check the connection and try again. A code above 0 is the lidar's own: it refused.")],
    ["Can not find",
     qsTr("The table of this model, in Config/varID, does not say how to ask for it.")],
    ["Nothing to be saved",
     qsTr("Change a value on this page first. Edited values are marked.")],
    ["Set Failed",
     qsTr("What the lidar did not take is still marked as edited. The log names the command that "
          + "failed.")],
    ["out of range",
     qsTr("The field's tooltip names its range.")],
    ["Parsing failed",
     qsTr("Write the command as one or two hexadecimal digits, the payload as such pairs.")],
    ["Input value of fov",
     qsTr("Enter degrees as a plain number, such as 12.5.")],
    ["check your config file",
     qsTr("Correct the row of the model's table in Config/varID that holds this value.")],
    ["No variables could be loaded",
     qsTr("Check the model's table in Config/varID, or choose another model.")],
    ["Auto reboot failed",
     qsTr("The file was sent. Switch the lidar's power off and on, connect again, and compare the "
          + "version that it shows.")],
    ["transfer failed or is terminated",
     qsTr("The upgrade panel tells how far it came and what the lidar runs. Check power and cable, "
          + "connect again if need be, and start the upgrade once more.")],
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
     qsTr("The lidar refused: it may not take this value, or not at the moment.")],
];

// What to do next after a success, by a piece of its message.
const bySuccess = [
    ["Upgrade package transmitted",
     qsTr("Leave the power on. The upgrade panel tells which version the lidar runs once it is back.")],
    ["restart command was not acknowledged",
     qsTr("The upgrade panel tells which versions the lidar runs, once it answers.")],
    ["Kiva upgrade completed",
     qsTr("Leave the power on. The upgrade panel tells which versions the lidar runs once it is back.")],
    ["restart the lidar", qsTr("The gear button restarts it.")],
];

// The advice for `message`, or `fallback`.
function forMessage(message, fallback) {
    const found = byMessage.find(entry => message.indexOf(entry[0]) >= 0);
    return found === undefined ? fallback : found[1];
}

function forSuccess(message) {
    const found = bySuccess.find(entry => message.indexOf(entry[0]) >= 0);
    return found === undefined ? "" : found[1];
}
