#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "settings_files/settings_plan.h"
#include "settings_files/settings_work.h"

/// What became of one value of a plan.
struct ApplyResult {
  enum class Outcome {
    kWritten,  ///< taken, and read back unless the reason says why not
    kRefused,  ///< nothing was taken, the reason says why
    kDiffers,  ///< taken, and the lidar holds another value
    kSkipped,  ///< nothing was written, or nobody knows: the reason says why
  };
  std::string name;
  Outcome outcome = Outcome::kSkipped;
  std::string wanted;  ///< text
  std::string holds;   ///< the text that was read last; "" when none was
  std::string reason;  ///< in words; "" for a value that was written and read back
};

/// "written", "refused", "differs" or "skipped".
const char* TextOf(ApplyResult::Outcome outcome);

struct ApplyReport {
  std::vector<ApplyResult> results;  ///< in the order of the plan
  /// Why it broke off: the link was lost, somebody stopped it, or the plan may not run. "" when it
  /// came to its end.
  std::string ended;
  bool lost = false;  ///< for the first of these reasons
  /// Values that were sent and could not be read back, though the link was to stay.
  size_t unproven = 0;
  int32_t lidar_code = 0;  ///< return code of the first command that the lidar refused; 0 for none
  /// Network settings were taken: where the lidar is reached after its restart; else empty.
  std::string next_address;

  size_t Count(ApplyResult::Outcome outcome) const;
  /// It came to its end, and everything that was to be written is what the lidar holds.
  bool succeeded() const;
};

/// Writes what the plan says: reads what the lidar holds now, then sends one set command after the
/// other, the network settings last, and reads back after each. Fields of a command that are not in
/// the plan go out as they were just read; a command whose fields could not be read is not sent.
/// Values go to the table, where what the user is typing stays. Ends at the first command without
/// an answer; what was sent before stays in force. `lidar.report` gets a line for each command.
ApplyReport RunApply(const SettingsLidar& lidar, const ApplyPlan& plan,
                     const WorkWatch& watch = {});
