#pragma once

#include <atomic>

/// What keeps user actions, background reads and transfers out of each other's way. The manager
/// sets the flags on its own thread together with the properties of the same meaning; workers only
/// read them.
struct LinkState {
  std::atomic<bool> connected{false};
  std::atomic<bool> upgrading{false};
  std::atomic<bool> downloading{false};

  /// Whether variables may be read now.
  bool MayRead() const { return connected && !upgrading && !downloading; }
};
