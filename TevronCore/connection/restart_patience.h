#pragma once

#include <chrono>

/// How a lidar that restarts is waited for.
struct RestartPatience {
  /// It is left alone this long at first: it may still answer before it goes down.
  std::chrono::milliseconds leaves{1000};
  /// Then it is tried again and again until it answers or this time, counted from the beginning, is
  /// over.
  std::chrono::milliseconds returns{60000};
};
