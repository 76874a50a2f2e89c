import QtQuick 2.15
import Tevron 1.0

// Everything that the window asks about, one question at a time.
//
// manager   the object that holds the values which a question may be about
// confirmed(purpose, argument)  the question that was asked for `purpose` was answered with yes
// editsAnswered(answer, purpose, argument)  what becomes of unsaved edits: "save" or "discard"; the
//           user who stays is not told of
Item {
    id: questions

    property var manager

    signal confirmed(string purpose, var argument)
    signal editsAnswered(string answer, string purpose, var argument)

    readonly property var editsTitles: ({
        "tab": qsTr("Leave the page with unsaved edits?"),
        "model": qsTr("Choose another model with unsaved edits?"),
        "apply": qsTr("Apply settings with unsaved edits?"),
        "disconnect": qsTr("Disconnect with unsaved edits?"),
        "close": qsTr("Close the window with unsaved edits?")
    })

    function warn(title, message) {
        box.ask({ "title": title, "message": message, "advice": "", "accept": qsTr("OK"), "reject": null });
    }

    // Where no lidar is connected, nothing can be saved.
    function askEdits(purpose, argument) {
        const canSave = manager.IsConnected;
        box.ask({ "purpose": "edits",
                  "argument": { "purpose": purpose, "argument": argument,
                                "accept": canSave ? "save" : "discard" },
                  "title": editsTitles[purpose],
                  "message": qsTr("What you changed on this page is not saved."),
                  "advice": canSave ? qsTr("Save writes it to the lidar first; Discard drops it.")
                          : qsTr("It can be saved once a lidar is connected; Discard drops it."),
                  "accept": canSave ? qsTr("Save") : qsTr("Discard"),
                  "other": canSave ? qsTr("Discard") : "", "reject": qsTr("Stay"),
                  "dangerous": !canSave, "guarded": true });
    }

    // `waiting` goes on once the values are written, see LeaveControl.
    function askSave(names, waiting) {
        box.ask({ "purpose": "save", "argument": waiting, "title": qsTr("Values out of range"),
                  "message": qsTr("These values are out of range or badly written:\n%1")
                                 .arg(names.map(describe).join("\n")),
                  "advice": qsTr("The lidar may refuse them. Continue writes them all the same; Cancel goes back to the page."),
                  "accept": qsTr("Continue"), "dangerous": true });
    }

    function askRestart() {
        box.ask({ "purpose": "restart", "title": qsTr("Restart the lidar?"),
                  "message": qsTr("The lidar restarts and does not measure until it is up again."),
                  "advice": qsTr("The connection may be lost meanwhile."),
                  "accept": qsTr("Restart") });
    }

    function askReset() {
        box.ask({ "purpose": "reset", "title": qsTr("Reset to factory settings?"),
                  "message": qsTr("Every setting on the lidar goes back to its factory value."),
                  "advice": qsTr("A snapshot of the settings is saved first. The address may change; connect to the new one then."),
                  "accept": qsTr("Reset"), "dangerous": true });
    }

    // Whether a certificate that nobody has trusted yet is the lidar's own, see LinkWatch.
    function askTrust(lidar) {
        const number = lidar.serialNumber || qsTr("not told");
        const half = lidar.sha256.length / 2;
        // Each text of the lidar in a sentence of its own: in a common one "%2" in the first would
        // be taken for the place of the second.
        const facts = [qsTr("Serial number: %1").arg(number), qsTr("Subject: %1").arg(lidar.subject),
                       qsTr("Valid: %1 to %2").arg(lidar.validFrom).arg(lidar.validUntil), qsTr("SHA-256:"),
                       lidar.sha256.slice(0, half + 1), lidar.sha256.slice(half + 1)];
        box.ask({ "purpose": "trust", "argument": lidar, "title": qsTr("Trust this lidar?"),
                  "message": qsTr("The lidar at %1 has shown a certificate that is not known on this computer.").arg(lidar.place)
                      + "\n\n" + facts.join("\n"),
                  "advice": qsTr("Compare the SHA-256 with what whoever set the lidar up has written down. Trust remembers it and connects; another certificate is refused from then on.")
                      + (lidar.serialNumber ? "" : qsTr(" Without a serial number it is remembered for this address.")),
                  "accept": qsTr("Trust"), "reject": qsTr("Do Not Connect"), "guarded": true });
    }

    // The lidar has taken network settings, and is reached there from its next restart on.
    function askNextAddress(address) {
        box.ask({ "purpose": "address", "argument": address,
                  "title": qsTr("The lidar has taken network settings"),
                  "message": qsTr("Once they are in force, the lidar is reached at %1.").arg(address),
                  "advice": qsTr("Connecting waits there for a minute. Some lidars need a restart first: Stay leaves everything as it is, and the gear button restarts the lidar."),
                  "accept": qsTr("Connect to %1").arg(address), "reject": qsTr("Stay") });
    }

    function askClose(sending) {
        box.ask({ "purpose": "upgrading", "title": qsTr("Close during the upgrade?"),
                  "message": sending ? qsTr("The firmware is being sent to the lidar.")
                           : qsTr("The upgrade is not over: the lidar has to restart and to tell what it runs then."),
                  "advice": sending ? qsTr("Closing breaks the transfer off, and nothing here will tell which firmware the lidar runs then.")
                          : qsTr("After closing, nothing here will tell which firmware the lidar runs."),
                  "accept": qsTr("Close Anyway"), "reject": qsTr("Stay"), "dangerous": true });
    }

    // There is no way back to what the lidar holds now.
    function askUnkept(purpose, problem) {
        box.ask({ "purpose": "unkept", "argument": purpose,
                  "title": qsTr("No snapshot of the settings"),
                  "message": qsTr("No snapshot could be saved: %1").arg(problem),
                  "advice": qsTr("Without it, what the lidar holds now cannot be brought back. Go on without?"),
                  "accept": purpose === "reset" ? qsTr("Reset Anyway") : qsTr("Apply Anyway"),
                  "dangerous": true });
    }

    // `begun` is false while the snapshot ahead of it is taken.
    function askCloseApplying(begun) {
        box.ask({ "purpose": "upgrading",
                  "title": begun ? qsTr("Close while settings are written?")
                                 : qsTr("Close before anything is done?"),
                  "message": begun ? qsTr("The settings of a file are being written to the lidar.")
                                   : qsTr("What the lidar holds is being kept as a snapshot, ahead of what you asked for."),
                  "advice": begun ? qsTr("Closing breaks that off. What was written until then stays written, and nothing here will tell what it was.")
                                  : qsTr("Closing breaks that off. Nothing was written to the lidar."),
                  "accept": qsTr("Close Anyway"), "reject": qsTr("Stay"), "dangerous": true });
    }

    // The map entry of the variable `name`; null when no page shows it.
    function leafOf(name) {
        for (const page of manager.myMap) {
            for (const group of page) {
                const leaf = group.find(entry => entry.var_name === name);
                if (leaf !== undefined)
                    return leaf;
            }
        }
        return null;
    }

    // A value and what would be allowed, in one line.
    function describe(name) {
        const leaf = leafOf(name);
        if (leaf === null)
            return name;
        const allowed = leaf.range_min !== 0 || leaf.range_max !== 0
            ? qsTr("%1 to %2 %3").arg(leaf.range_min).arg(leaf.range_max).arg(leaf.unit || "").trim()
            : InputRules.ValueProblem(leaf, leaf.current_val).toLowerCase();
        return allowed === "" ? qsTr("%1: %2").arg(name).arg(leaf.current_val)
             : qsTr("%1: %2; allowed: %3").arg(name).arg(leaf.current_val).arg(allowed);
    }

    MessageWindow {
        id: box

        onAnswered: {
            if (answer === "reject" || purpose === "")
                return;
            if (purpose === "edits")
                questions.editsAnswered(answer === "accept" ? argument.accept : "discard",
                                        argument.purpose, argument.argument);
            else
                questions.confirmed(purpose, argument);
        }
    }
}
