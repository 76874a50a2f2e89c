#pragma once

#include <cstdint>
#include <string>

#include "upgrade/upgrade_work.h"

/// What was found out about the lidar after an upgrade.
struct UpgradeReadBack {
  enum class Found {
    kRead,     ///< `version` is what it runs now
    kSilent,   ///< it is there, but did not tell
    kAnother,  ///< what answers has another serial number; `version` is what that runs
    kNotBack,  ///< it did not come back in time
    kEnded,    ///< it was not waited for any longer
  };
  Found found = Found::kEnded;
  std::string version;
};

struct UpgradeOutcome {
  bool failed = true;
  std::string text;  ///< one to three sentences for the user
};

/// How the upgrade ended. Only a version that was read back makes a success. `before` is what the
/// lidar ran, "" for unknown.
UpgradeOutcome OutcomeOf(const UpgradeResult& result, const std::string& before,
                         const UpgradeReadBack& after, std::chrono::milliseconds patience);

/// A sentence or two on an order to restart that failed for `reason`, a sentence or part of one.
std::string RestartFailed(std::string reason);

/// Whether a stream that failed for `reason`, a code of command_sender.h, misses its last answer
/// alone; `end_kib` is the progress at its end.
bool MayHaveTakenAll(const UpgradeProgress& progress, int end_kib, int32_t reason);
