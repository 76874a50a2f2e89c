#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "CmxClient/command_sender.h"
#include "pages/read_failures.h"
#include "session/lidar_model.h"
#include "session/link_state.h"
#include "session/user_report.h"

/// The lidar whose settings are read or written. Everything has to outlive the work.
struct SettingsLidar {
  kavel::lidar::CommandSender& sender;
  const LidarModel& model;
  const LinkState& state;
  ReadFailures& failures;
  UserReport& report;
};

/// How long work is looked at and ended from outside. Both are called on the thread that works,
/// between two commands, and may be empty.
struct WorkWatch {
  std::function<bool()> stopped;                          ///< true: end soon
  std::function<void(size_t done, size_t all)> progress;  ///< in commands; `all` may grow
};

inline bool IsStopped(const WorkWatch& watch) { return watch.stopped && watch.stopped(); }

inline void TellProgress(const WorkWatch& watch, size_t done, size_t all) {
  if (watch.progress) {
    watch.progress(done, all);
  }
}

/// Why no command may be sent now: somebody stopped the work, the link is lost (then with *lost),
/// or something else has the lidar. "" when one may.
inline std::string WhyNotNow(const SettingsLidar& lidar, const WorkWatch& watch, bool* lost) {
  if (IsStopped(watch)) {
    return "it was stopped";
  }
  *lost = !lidar.sender.IsOpen() || !lidar.state.connected;
  const char* const obstacle =
      *lost ? "the lidar is not connected" : lidar.state.Obstacle(&lidar.sender);
  return obstacle == nullptr ? "" : obstacle;
}
