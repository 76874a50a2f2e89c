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
    [".patch file",
     qsTr("Choose the upgrade package that came for this model.")],
    ["no answer from the lidar",
     qsTr("Check the lidar's power and cable; after a restart it needs a while. Then try again.")],
    ["lidar return code",
     qsTr("The lidar refused: it may not take this value, or not at the moment.")],
];

// The advice for `message`, or `fallback`.
function forMessage(message, fallback) {
    const found = byMessage.find(entry => message.indexOf(entry[0]) >= 0);
    return found === undefined ? fallback : found[1];
}
