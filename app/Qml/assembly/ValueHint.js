.pragma library

// What a text field may say about a value while it is being typed. The rules follow the checks that
// saving makes, so that a field never accepts in silence what saving would then question.

var ipPattern = /^((25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\.){3}(25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)$/;
var macPattern = /^([0-9A-Fa-f]{2}:){5}([0-9A-Fa-f]{2})$/;
var numberPattern = /^[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?$/;

// The problem with `text` as a value of the variable described by `leaf`, in a few words; empty when
// there is none.
function problem(leaf, text) {
    if (!leaf || leaf.permission === 0)
        return "";
    switch (leaf.var_type) {
    case "IP":
        return ipPattern.test(text) ? "" : qsTr("An address like 192.168.1.201");
    case "MAC":
        return macPattern.test(text) ? "" : qsTr("Six pairs like AA:BB:CC:DD:EE:FF");
    case "string":
    case "raw":
    case "DT":
        return "";
    default:
        return numberProblem(leaf, text);
    }
}

function numberProblem(leaf, text) {
    if (!numberPattern.test(text.trim()))
        return qsTr("A number is needed");
    var low = leaf.range_min, high = leaf.range_max;
    if (low === undefined || high === undefined || (low === 0 && high === 0))
        return "";
    var value = parseInt(text, 10);
    return value >= low && value <= high ? "" : qsTr("Outside %1 to %2").arg(low).arg(high);
}
