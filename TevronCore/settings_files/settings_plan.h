#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "session/lidar_model.h"
#include "settings_files/settings_file.h"

/// What of a settings file is to be written.
struct ApplyWish {
  bool with_network = false;   ///< also the network settings (command 0x21)
  std::set<std::string> only;  ///< these variables alone, whichever they are; empty: all but the
                               ///< network settings and what says which lidar it is
  bool out_of_range = false;   ///< also what is outside its range, none of a choice, or rounded
};

/// What is to be done with one value.
struct PlannedValue {
  enum class Step {
    kWrite,
    kSkip,   ///< is left alone, for the reason
    kBlock,  ///< cannot be written, for the reason: nothing is, until it is left out or put right
  };
  std::string name;
  const VarInfo* var = nullptr;  ///< null when the model has none of that name
  Step step = Step::kSkip;
  std::string reason;          ///< of kSkip and kBlock; of kWrite what is to be known, mostly ""
  std::string wanted;          ///< text
  std::vector<uint8_t> bytes;  ///< of kWrite
  std::string holds;           ///< what the lidar held; "" when that is unread
};

/// What would be written to a lidar; nothing has been sent. Refers to the model that it was made
/// for. A screen may turn kWrite into kSkip before it is run.
struct ApplyPlan {
  std::string refusal;                ///< why none of it may be written; "" when it may
  std::vector<std::string> warnings;  ///< sentences
  std::vector<PlannedValue> values;   ///< as in the file, then the names of the wish it lacks

  size_t Count(PlannedValue::Step step) const;
  bool may_run() const { return refusal.empty() && Count(PlannedValue::Step::kBlock) == 0; }
};

/// Checks what is wanted against the model's table (types, ranges while their switch is on,
/// choices) and against what the lidar holds now. `wanted` is a settings file, or values from
/// elsewhere: then with a name and a text each, and without a model, which is not compared.
///
/// A file of another model is refused; another table or other firmware is a warning. Skipped is
/// what is key material, read-only, unread in the file, not in this model, what the lidar holds
/// already, and what the wish leaves out. Of the names in ApplyWish::only, what is skipped for
/// another reason than that the lidar holds it is blocked: it was asked for.
ApplyPlan PlanApply(const LidarModel& model, const SettingsFile& present,
                    const SettingsFile& wanted, const ApplyWish& wish);
