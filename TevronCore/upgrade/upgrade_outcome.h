#pragma once

#include <cstdint>
#include <string>

#include "upgrade/upgrade_work.h"

/// What was found out about the lidar after an upgrade.
struct UpgradeReadBack {
  enum class Found {
    kRead,     ///< `version` is what it runs now
    kSilent,   ///< it is there, but did not tell
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

/// A sentence or two on an order to restart that failed for `reason`, a code of command_sender.h.
std::string RestartFailed(int32_t reason);

/// What is said when the answer to the end of a transfer alone is missing.
inline constexpr char kMayHaveTakenAll[] =
    " Only the last answer is missing, so the lidar may start the new firmware at its next "
    "restart.";

/// Whether that is so of a stream that failed for `reason`; `end_kib` is the progress at its end.
bool MayHaveTakenAll(const UpgradeProgress& progress, int end_kib, int32_t reason);
