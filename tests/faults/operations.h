#pragma once

#include "faults/bench.h"

/// What came of an operation, as the program tells it and as it is.
struct Outcome {
  bool claimed = false;  ///< the user is told, or shown, that it went well
  bool done = false;     ///< what was asked for has happened, by the lidar's own account
  bool shown = false;    ///< what went wrong stands on the screen, apart from the messages
};

// Each brings the bench to where the operation of its cell can begin, arms it, and does what a user
// does. The heart is told what the window is at.
Outcome ConnectToIt(Bench& bench);
Outcome Read(Bench& bench);
Outcome Save(Bench& bench);
Outcome SaveSettingsFile(Bench& bench);
Outcome SendByConsole(Bench& bench);
Outcome SetSpinRate(Bench& bench);
Outcome RestartIt(Bench& bench);
Outcome Upgrade(Bench& bench);
Outcome Download(Bench& bench);
Outcome DownloadOperationLog(Bench& bench);
Outcome Record(Bench& bench);
Outcome WatchLink(Bench& bench);
