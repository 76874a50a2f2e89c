#pragma once

#include "faults/bench.h"

/// What came of an operation, as the program tells it and as it is.
struct Outcome {
  bool claimed = false;  ///< the user is told, or shown, that it went well
  bool done = false;     ///< what was asked for has happened, by the lidar's own account
  bool shown = false;    ///< what went wrong stands on the screen, apart from the messages
};

/// Brings the bench to where the operation of its cell can begin, arms it, and does what a user
/// does. The heart is told what the window is at.
Outcome Perform(Bench& bench);
