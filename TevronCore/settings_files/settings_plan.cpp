#include "settings_files/settings_plan.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "pages/command_writer.h"
#include "settings_files/value_bytes.h"
#include "variables/command_code.h"

namespace {

using Step = PlannedValue::Step;
using Problem = InputProblem::Kind;
using Index = std::unordered_map<std::string, const SavedValue*>;

Index IndexOf(const SettingsFile& file) {
  Index index;
  for (const SavedValue& value : file.values) {
    index.emplace(value.name, &value);
  }
  return index;
}

const SavedValue* In(const Index& index, const std::string& name) {
  const auto found = index.find(name);
  return found == index.end() ? nullptr : found->second;
}

/// Says which lidar it is or what it runs.
bool IsIdentity(const VarInfo& var) {
  static const std::set<std::string> names = {"PN", "SN", "MAC", "HWVER", "SWVER_YMD"};
  return names.count(var.var_name) != 0 || var.value_type->kind == ValueKind::kMac;
}

class Planner {
 public:
  Planner(const LidarModel& model, const SettingsFile& present, const SettingsFile& wanted,
          const ApplyWish& wish)
      : table_(*model.table), present_(IndexOf(present)), wanted_(IndexOf(wanted)), wish_(wish) {}

  PlannedValue Plan(const SavedValue& value) const {
    PlannedValue planned;
    planned.name = value.name;
    planned.wanted = value.text.value_or("");
    if (const SavedValue* const held = In(present_, value.name)) {
      planned.holds = held->text.value_or("");
    }
    planned.var = OwnVariable(value.name);
    planned.reason = WhyNot(value, planned.var);
    if (planned.reason.empty()) {
      Weigh(value, &planned);
    } else if (IsAskedFor(value.name)) {
      planned.step = Step::kBlock;
    }
    return planned;
  }

 private:
  bool IsAskedFor(const std::string& name) const { return wish_.only.count(name) != 0; }

  const VarInfo* OwnVariable(const std::string& name) const {
    const VarInfo* const var = table_.FindByName(name);
    return var != nullptr && table_.IsOwn(*var) ? var : nullptr;
  }

  /// Why the value is left alone without a look at what it is; "" when it is not.
  std::string WhyNot(const SavedValue& value, const VarInfo* var) const {
    const bool asked_for = IsAskedFor(value.name);
    if (!wish_.only.empty() && !asked_for) {
      return "not asked for";
    }
    if (value.name == kSharedSecretKey) {
      return "key material";
    }
    if (var == nullptr) {
      return "not in this model";
    }
    if (!value.was_read()) {
      return "unread in the file: " + value.unread;
    }
    if (!CanBeApplied(*var)) {
      return "read-only";
    }
    if (!asked_for && IsIdentity(*var)) {
      return "says which lidar it is";
    }
    if (!asked_for && !wish_.with_network && IsCommand(var->set_cmd, kNetworkCommand)) {
      return "network setting";
    }
    return "";
  }

  void Weigh(const SavedValue& value, PlannedValue* planned) const {
    const VarInfo& var = *planned->var;
    const SavedValue* const held = In(present_, value.name);
    const bool is_known = held != nullptr && held->bytes;
    const WantedValue wanted =
        WantedOf(var, value, is_known ? *held->bytes : std::vector<uint8_t>(), RangeCounts(var));
    planned->wanted = wanted.text;
    planned->bytes = wanted.bytes;
    planned->reason = wanted.problem.text;
    const bool is_possible = wanted.problem.kind != Problem::kImpossible;
    const bool is_equal = is_known && !wanted.bytes.empty() && wanted.bytes == *held->bytes;
    if (is_equal && wanted.problem.kind != Problem::kRounded) {
      planned->reason = "the lidar holds it already";
    } else {
      const bool passes =
          wanted.problem.kind == Problem::kNone || (is_possible && wish_.out_of_range);
      planned->step = passes ? Step::kWrite : Step::kBlock;
    }
  }

  /// Whether the range of `var` counts once everything is written.
  bool RangeCounts(const VarInfo& var) const {
    const VarInfo* const control =
        var.switch_var_id.empty() ? nullptr : table_.Find(var.switch_var_id);
    if (control == nullptr) {
      return true;
    }
    const SavedValue* value = In(wanted_, control->var_name);
    if (value == nullptr || !WhyNot(*value, control).empty()) {
      value = In(present_, control->var_name);
    }
    return value == nullptr || !value->was_read() ||
           SwitchIndexOf(WantedOf(*control, *value, {}, true).text) != "0";
  }

  const ConfigParser& table_;
  const Index present_;
  const Index wanted_;
  const ApplyWish& wish_;
};

void CompareOrigins(const SettingsFile& present, const SettingsFile& wanted, ApplyPlan* plan) {
  const auto differ = [](const std::string& one, const std::string& other) {
    return !one.empty() && !other.empty() && one != other;
  };
  if (differ(present.model, wanted.model)) {
    plan->refusal =
        "The settings are those of model " + wanted.model + ", the lidar is " + present.model + ".";
  }
  if (differ(present.table_sha256, wanted.table_sha256)) {
    plan->warnings.push_back("The settings were read with another table of " + wanted.model +
                             ": some may be missing, or mean something else here.");
  }
  if (differ(present.firmware, wanted.firmware)) {
    plan->warnings.push_back("The settings come from firmware " + wanted.firmware +
                             ", the lidar runs " + present.firmware + ".");
  }
}

}  // namespace

size_t ApplyPlan::Count(PlannedValue::Step step) const {
  return static_cast<size_t>(std::count_if(
      values.begin(), values.end(), [&](const PlannedValue& value) { return value.step == step; }));
}

ApplyPlan PlanApply(const LidarModel& model, const SettingsFile& present,
                    const SettingsFile& wanted, const ApplyWish& wish) {
  ApplyPlan plan;
  CompareOrigins(present, wanted, &plan);
  const Planner planner(model, present, wanted, wish);
  for (const SavedValue& value : wanted.values) {
    plan.values.push_back(planner.Plan(value));
  }
  for (const std::string& name : wish.only) {
    if (wanted.Find(name) == nullptr) {
      PlannedValue missing;
      missing.name = name;
      missing.step = Step::kBlock;
      missing.reason = "not in the file";
      plan.values.push_back(std::move(missing));
    }
  }
  return plan;
}
