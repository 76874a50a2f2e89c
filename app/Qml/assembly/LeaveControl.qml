import QtQuick 2.15

// Does what would lose the edits of the page in view once the user has settled what becomes of them.
//
// pages     the PageArea: hasEdits, settle(), discard(), write()
// actions   what follows, functions by their purpose; each gets the argument that was told with it
// following what waits for the Save in hand, which may have to be confirmed first; else null
// asked(purpose, argument)  answered by settleAndGo() or nothing
Item {
    id: control

    property var pages
    property var actions: ({})
    property var following: null

    signal asked(string purpose, var argument)

    function leave(purpose, argument) {
        pages.hasEdits ? asked(purpose, argument) : go(purpose, argument);
    }

    // `answer` is "save" or "discard".
    function settleAndGo(answer, purpose, argument) {
        if (answer === "discard") {
            pages.discard();
            go(purpose, argument);
            return;
        }
        following = { "purpose": purpose, "argument": argument };
        pages.settle(() => go(purpose, argument));
        following = null;
    }

    // Writes what was confirmed, and does what waited for it.
    function write(waiting) {
        pages.write(waiting ? () => go(waiting.purpose, waiting.argument) : undefined);
    }

    function go(purpose, argument) {
        actions[purpose](argument);
    }
}
