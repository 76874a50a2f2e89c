#pragma once

#include <atomic>

#include "CmxClient/command_sender.h"

/// What keeps user actions, background reads and transfers out of each other's way. They are
/// set on the thread that owns the session; workers only read them.
struct LinkState {
  static constexpr char kAppliesSettings[] =
      "Please wait until the settings of the file are applied";

  std::atomic<bool> connected{false};
  std::atomic<bool> upgrading{false};
  std::atomic<bool> downloading{false};
  std::atomic<bool> applying{false};  ///< a file's settings are being written, and nothing else

  /// Whether variables may be read now.
  bool MayRead() const { return connected && !upgrading && !downloading; }
  /// Whether commands by hand may be sent.
  bool MayCommand() const { return MayRead() && !applying; }

  /// Why nothing can be written over `sender` (null: none) now, as a sentence for the user; null
  /// when it can.
  const char* Obstacle(kavel::lidar::CommandSender* sender) const {
    if (sender == nullptr || !sender->IsOpen() || !connected) {
      return "Please connect to lidar first";
    }
    if (upgrading) {
      return "Please wait for the lidar to upgrade completely";
    }
    if (applying) {
      return kAppliesSettings;
    }
    return downloading ? "Please wait for the operation log to download completely" : nullptr;
  }
};
