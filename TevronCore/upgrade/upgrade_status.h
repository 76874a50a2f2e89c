#pragma once

#include <string>
#include <vector>

/// What a screen shows of an upgrade.

enum class UpgradeStepState { kPending, kRunning, kDone, kFailed, kSkipped };

/// One step, or one component of a package, with its name for the user.
struct UpgradeStep {
  std::string name;
  UpgradeStepState state = UpgradeStepState::kPending;
};

/// One upgrade at one moment: the one that runs, or the last one. Without any, all of it is empty.
struct UpgradeSnapshot {
  bool running = false;  ///< until the outcome is known, long after the transfer
  bool failed = false;
  std::vector<UpgradeStep> steps;
  std::string outcome;  ///< one or two sentences; "" while it runs
  int progress_kib = 0;
  int total_kib = 0;
  std::string version_before;  ///< as the lidar told it; "" for unknown
  std::string version_after;   ///< read back after the upgrade; "" for unknown
  std::string file_name;       ///< without its folder
};
