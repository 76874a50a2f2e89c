#include "settings_files/settings_comparison.h"

#include <unordered_map>
#include <utility>

namespace {

using Outcome = ApplyResult::Outcome;
using Step = PlannedValue::Step;

bool Differ(const std::string& one, const std::string& other) {
  return !one.empty() && !other.empty() && one != other;
}

std::vector<std::string> WarningsOf(const SettingsFile& left, const SettingsFile& right) {
  std::vector<std::string> warnings;
  if (Differ(left.model, right.model)) {
    warnings.push_back("The files are of different models: " + left.model + " and " + right.model +
                       ".");
  } else if (Differ(left.table_sha256, right.table_sha256)) {
    warnings.push_back("The files were written with different tables of " + left.model + ".");
  }
  if (Differ(left.firmware, right.firmware)) {
    warnings.push_back("They come from different firmware: " + left.firmware + " and " +
                       right.firmware + ".");
  }
  return warnings;
}

/// A value as its page shows it: of a choice the label.
void Label(const Control& control, std::string* text) {
  const int place = OptionIndexOf(control, *text);
  if (place >= 0 && !control.options[static_cast<size_t>(place)].label.empty()) {
    *text = control.options[static_cast<size_t>(place)].label;
  }
}

void AddRows(const ConfigParser* table, SettingsComparison* comparison) {
  const SettingsFile nothing;
  const SettingsFile* const right = comparison->right.settings.get();
  for (DiffRow& row :
       CompareSettings(*comparison->left.settings, right == nullptr ? nothing : *right, table)
           .rows) {
    if (const VarInfo* const var = table == nullptr ? nullptr : table->FindByName(row.name)) {
      Label(*var, &row.left);
      Label(*var, &row.right);
    }
    comparison->rows.emplace_back().diff = std::move(row);
  }
}

std::unordered_map<std::string, ComparedRow*> RowsOf(SettingsComparison* comparison) {
  std::unordered_map<std::string, ComparedRow*> rows;
  for (ComparedRow& row : comparison->rows) {
    rows.emplace(row.diff.name, &row);
  }
  return rows;
}

}  // namespace

SettingsComparison ComparisonOfFiles(ComparedSide left, ComparedSide right,
                                     const LidarModel& model) {
  SettingsComparison comparison;
  comparison.left = std::move(left);
  comparison.right = std::move(right);
  const SettingsFile& one = *comparison.left.settings;
  if (comparison.right.settings != nullptr) {
    comparison.warnings = WarningsOf(one, *comparison.right.settings);
  }
  AddRows(one.model == model.name ? model.table.get() : nullptr, &comparison);
  return comparison;
}

SettingsComparison ComparisonWithLidar(ComparedSide file, std::shared_ptr<const SettingsFile> held,
                                       const LidarModel& model) {
  SettingsComparison comparison;
  comparison.with_lidar = true;
  comparison.left = std::move(file);
  comparison.right.settings = std::move(held);
  const SettingsFile& wanted = *comparison.left.settings;
  ApplyWish wish;
  const ApplyPlan usual = PlanApply(model, *comparison.right.settings, wanted, wish);
  wish.with_network = true;
  const ApplyPlan with_network = PlanApply(model, *comparison.right.settings, wanted, wish);
  comparison.warnings = usual.warnings;
  comparison.refusal = usual.refusal;
  AddRows(usual.refusal.empty() ? model.table.get() : nullptr, &comparison);
  if (!usual.refusal.empty()) {
    return comparison;
  }
  const auto rows = RowsOf(&comparison);
  for (size_t i = 0; i < with_network.values.size(); ++i) {
    const PlannedValue& value = with_network.values[i];
    ComparedRow& row = *rows.at(value.name);
    if (value.step == Step::kWrite) {
      const bool is_usual = usual.values[i].step == Step::kWrite;
      row.choice = is_usual ? RowChoice::kOffered : RowChoice::kOnDemand;
    }
    if (row.diff.writable && row.diff.kind != DiffKind::kEqual) {
      row.reason = row.choice == RowChoice::kOnDemand ? usual.values[i].reason : value.reason;
    }
  }
  return comparison;
}

void TakeReport(const ApplyReport& report, const LidarModel& model,
                SettingsComparison* comparison) {
  const auto rows = RowsOf(comparison);
  for (const ApplyResult& result : report.results) {
    ComparedRow& row = *rows.at(result.name);
    row.outcome = result.outcome;
    row.reason = result.reason;
    if (result.outcome == Outcome::kWritten) {
      row.choice = RowChoice::kNever;
      if (result.reason.empty()) {  // read back
        row.diff.kind = DiffKind::kEqual;
        row.diff.right = row.diff.left;
      }
    } else if (!result.holds.empty()) {
      row.diff.right = result.holds;
      if (const VarInfo* const var = model.table->FindByName(result.name)) {
        Label(*var, &row.diff.right);
      }
    }
  }
}
