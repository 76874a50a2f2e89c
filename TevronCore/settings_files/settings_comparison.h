#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "session/lidar_model.h"
#include "settings_files/settings_apply.h"
#include "settings_files/settings_diff.h"
#include "settings_files/settings_file.h"

/// Whether a value of the left side may be written to the lidar on the right.
enum class RowChoice {
  kNever,     ///< there is nothing to write, or nothing that may be written
  kOffered,   ///< an ordinary setting
  kOnDemand,  ///< where the lidar is reached: only when the user asks for it
};

struct ComparedRow {
  DiffRow diff;
  RowChoice choice = RowChoice::kNever;
  std::optional<ApplyResult::Outcome> outcome;  ///< of the last time that it was to be applied
  /// Why that came so; without an outcome what keeps the value from being applied. In words, ""
  /// where there is nothing to say.
  std::string reason;
};

/// One side of a comparison: a file, or the lidar as it was read then.
struct ComparedSide {
  std::string path;                              ///< "" of the lidar
  std::shared_ptr<const SettingsFile> settings;  ///< null where there is no such side
};

/// A comparison as it is shown.
struct SettingsComparison {
  ComparedSide left;
  ComparedSide right;
  bool with_lidar = false;            ///< the right side is the lidar
  std::vector<std::string> warnings;  ///< sentences: another table, another firmware
  std::string refusal;                ///< why nothing of it can be applied; "" when it can
  std::vector<ComparedRow> rows;
};

/// Two files, or one by itself where `right` has no settings. `model` says what texts mean in files
/// of that model.
SettingsComparison ComparisonOfFiles(ComparedSide left, ComparedSide right,
                                     const LidarModel& model);

/// A file with what a lidar of this model holds.
SettingsComparison ComparisonWithLidar(ComparedSide file, std::shared_ptr<const SettingsFile> held,
                                       const LidarModel& model);

/// Puts what became of the values into their rows, and what the lidar holds since then.
void TakeReport(const ApplyReport& report, const LidarModel& model, SettingsComparison* comparison);
