import QtQuick 2.15
import Tevron 1.0
import Tevron 1.0

// What the command console does: sending, what came back, and the reply of every command in the
// history.
//
// manager      the object that sends, and holds the history
// chosen       the entry of the history whose reply is shown; -1: the last attempt
// header, payload, verdict, tag    that reply, the verdict in words with its level as a log tag
Item {
    id: control

    property var manager
    // Entry for entry those of the manager's history: { header, payload, verdict }.
    property var replies: []
    property var lastAttempt: null
    property int chosen: -1

    readonly property var history: manager.SendCommandHistory
    readonly property var shown: chosen >= 0 && chosen < replies.length ? replies[chosen] : lastAttempt
    readonly property string header: shown ? shown.header : ""
    readonly property string payload: shown ? shown.payload : ""
    readonly property string verdict: shown ? shown.verdict.text : ""
    readonly property string tag: shown ? shown.verdict.tag : ""

    // Why nothing can be sent now; empty when it can.
    function obstacle() {
        if (!manager.IsConnected)
            return qsTr("Please connect to lidar first");
        if (manager.IsUpgrading)
            return qsTr("Please wait for the lidar to upgrade completely");
        return manager.IsDownloadLog
               ? qsTr("Please wait for the operation log to download completely") : "";
    }

    function send(command, payload) {
        const reason = obstacle()
                     || wrong(qsTr("command"), ConsoleWords.CommandProblem(command))
                     || wrong(qsTr("payload"), ConsoleWords.PayloadProblem(payload));
        chosen = -1;
        const before = history;
        LongCalls.Run(() => manager.SendCommand(command, payload));
        if (!isNew(before, command, payload)) {
            lastAttempt = failure(reason === "" ? ConsoleWords.Verdict(command, "")
                                  : { text: qsTr("Not sent: %1").arg(reason), tag: "WARNING" });
            return;
        }
        const header = manager.SendCmxCommandReturnHeader;
        lastAttempt = { header: header, payload: manager.SendCmxCommandReturnPayload,
                        verdict: ConsoleWords.Verdict(command, header) };
        replies = [lastAttempt].concat(replies).slice(0, history.length);
    }

    function wrong(part, problem) {
        return problem === "" ? "" : part + ": " + problem;
    }

    function failure(verdict) {
        return { header: "", payload: "", verdict: verdict };
    }

    // Only an answered command gets into the history. A full one whose entries are all alike looks
    // the same afterwards.
    function isNew(before, command, payload) {
        const first = history[0];
        return history.length > before.length
            || JSON.stringify(history) !== JSON.stringify(before)
            || before.length === historySize && manager.SendCmxCommandReturnHeader !== ""
               && first.send_cmd_history === command && first.send_payload_history === payload;
    }

    readonly property int historySize: 10

    // The history with its replies, oldest last, to be kept as a file.
    function historyText() {
        return history.map((entry, index) => {
            const reply = replies[index];
            const sent = (entry.send_cmd_history + " " + entry.send_payload_history).trim();
            return entry.record_time + "  " + sent
                 + (reply ? "\n  " + reply.verdict.text + "\n  " + reply.header + "\n"
                            + ConsoleWords.Dump(reply.payload, 16).replace(/^/gm, "  ") : "");
        }).join("\n\n") + "\n";
    }
}
