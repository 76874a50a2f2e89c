#include "variables/row_rules.h"

#include <string>
#include <string_view>

#include "CmxClient/fov_command.h"
#include "variables/command_code.h"
#include "variables/number_text.h"

namespace {

bool IsChoice(const VarInfo& var) { return var.type == kChoice || var.type == kTallChoice; }

void CheckName(const VarInfo& var, FaultList* faults) {
  const std::string& name = var.var_name;
  if (name.empty()) {
    faults->Fault(var.line, "VarName is empty; write the name that the user reads");
  } else if (Trim(name).size() != name.size()) {
    faults->Warn(var.line, "VarName " + Quoted(name) +
                               " has blanks around it, which count; write " + Quoted(Trim(name)));
  }
  const std::string& page = var.function_module;
  if (Trim(page).size() != page.size()) {
    faults->Warn(var.line, "FunctionModule " + Quoted(page) +
                               " has blanks around it, which make it another page; write " +
                               Quoted(Trim(page)));
  }
  // These names decide over their type, see DecodeValue.
  const bool is_version = name == "HWVER" || name == "SWVER_YMD";
  if (is_version && var.offset != 16) {
    faults->Fault(var.line, "VarLen of " + name + " is " + std::to_string(var.offset) +
                                "; write 16. The value is not shown until then");
  } else if (name == "MAC" && var.offset < 6) {
    faults->Fault(var.line, "VarLen of MAC is " + std::to_string(var.offset) +
                                "; write 6 or more. The value is not shown until then");
  }
}

void CheckType(const VarInfo& var, FaultList* faults) {
  ValueKind kind = var.value_type->kind;
  if (kind == ValueKind::kUnknown) {
    kind = ValueTypeOf(var.var_type).kind;  // the type may be fine, and something else not
  }
  if (kind == ValueKind::kUnknown) {
    faults->Fault(var.line, "VarType " + Quoted(var.var_type) +
                                " is unknown; write a type such as uint16, i32, float32, string or "
                                "raw. The value is neither shown nor changed until then");
  } else if (var.get_cmd.empty() && !var.set_cmd.empty() && kind != ValueKind::kRaw) {
    faults->Fault(var.line,
                  "a variable with Set and without Get has to be raw; write raw, or the command "
                  "that reads it. Saving it fails until then");
  }
}

void CheckDefault(const VarInfo& var, FaultList* faults) {
  if (IsChoice(var) && OptionIndexOf(var, var.default_val) < 0) {
    faults->Fault(var.line, "DefaultValue " + Quoted(var.default_val) +
                                " is none of the Options; write one of them");
    return;
  }
  const bool has_range = var.range_min != 0 || var.range_max != 0;
  const bool is_off = var.type == kSwitch && var.default_val == "0";
  if (!has_range || is_off || !var.switch_var_id.empty()) {
    return;
  }
  const auto value = SignedDecimal(var.default_val.str());
  if (value && (*value < var.range_min || *value > var.range_max)) {
    faults->Warn(var.line, "DefaultValue " + Quoted(var.default_val) +
                               " is outside the range of the Options; write one within it");
  }
}

// Two are shown, none is none.
void CheckLabels(const VarInfo& var, FaultList* faults) {
  if (var.type == kSwitch && !var.options.empty() && var.options.size() != 2) {
    faults->Fault(var.line, "OptionDescription has " + std::to_string(var.options.size()) +
                                (var.options.size() == 1 ? " label" : " labels") +
                                " for a switch; write two, split by |, for off and on, or none");
  }
  for (const Option& option : var.options) {
    if (option.label.empty()) {
      faults->Warn(var.line, "OptionDescription has an empty label; write what the user chooses");
      return;
    }
  }
}

// A control that nobody can use, or not for what it is there.
void CheckPermission(const VarInfo& var, FaultList* faults) {
  const bool has_control = !var.hidden && var.type != kFile && var.type != kMonitor;
  if (var.permission == 0 || !has_control) {
    return;
  }
  const ValueType& type = *var.value_type;
  // A raw variable on no page is a command that the program sends by itself, and that of the field
  // of view has a table of its own.
  const bool is_raw_command =
      type.kind == ValueKind::kRaw &&
      (var.function_module.empty() || IsCommand(var.set_cmd, kavel::lidar::kFovCommand));
  const bool takes_only_zero =
      type.kind == ValueKind::kInteger && type.size >= 4 && !type.is_signed && !type.is_exact;
  if (var.set_cmd.empty()) {
    faults->Warn(var.line,
                 "Permission lets the user change what no Set writes; write 0, or the command");
  } else if (takes_only_zero) {
    faults->Warn(var.line, "the only value that " + var.var_type.str() +
                               " lets a user save is 0; write " + (type.size == 4 ? "u32" : "u64") +
                               ", or the Permission 0");
  } else if (type.kind != ValueKind::kUnknown && !type.has_input && !is_raw_command) {
    faults->Warn(var.line, "Permission lets the user change a " + var.var_type.str() +
                               ", which nobody can; write 0, or another VarType");
  }
}

}  // namespace

void CheckRow(const VarInfo& var, FaultList* faults) {
  CheckName(var, faults);
  CheckType(var, faults);
  CheckDefault(var, faults);
  CheckLabels(var, faults);
  CheckPermission(var, faults);
}
