#include "variables/input_hint.h"

#include <cmath>

#include "variables/field_group.h"
#include "variables/input_problem.h"
#include "variables/number_text.h"

namespace {

std::string Refusal(const VarInfo& var) {
  if (var.set_cmd.empty()) {
    return "Cannot be changed: the table gives no usable command that writes it.";
  }
  if (!FillsItsPlace(var)) {
    return "Cannot be changed: the table gives it " + std::to_string(var.offset) + " bytes, and " +
           var.var_type.str() + " takes " + std::to_string(var.value_type->size) + ".";
  }
  if (var.write != nullptr && !var.write->obstacle.empty()) {
    return "Cannot be changed: " + var.write->obstacle + '.';
  }
  if (var.value_type->kind == ValueKind::kUnknown) {
    return "Cannot be changed: line " + std::to_string(var.line) +
           " of the table does not say what the value means.";
  }
  return "Cannot be changed: there is no way to enter the type \"" + var.var_type.str() + "\".";
}

std::string Range(const VarInfo& var) {
  if (var.range_min == 0 && var.range_max == 0) {
    return {};
  }
  const std::string text = std::to_string(var.range_min) + " to " + std::to_string(var.range_max);
  return var.type == kSwitch && var.range_min > 0 ? text + ", or off" : text;
}

// The table offers these values, or the switch stands for them.
bool NeedsNoTyping(const VarInfo& var) {
  return var.type == kChoice || var.type == kTallChoice ||
         (var.type == kSwitch && var.range_max <= 1);
}

}  // namespace

std::string InputHint(const VarInfo& var) {
  if (var.permission == 0) {
    return {};
  }
  if (!CanBeChanged(var)) {
    return Refusal(var);
  }
  const float step = std::fabs(var.set_coefficient);
  if (TakesOnlyZero(*var.value_type)) {
    return step == 1.0F ? "Only 0 can be saved."
                        : "Only values from 0 up to, not including, " + ShortText(step) +
                              " can be saved, and are stored as 0.";
  }
  if (NeedsNoTyping(var)) {
    return {};
  }
  std::string hint = Range(var);
  if (var.value_type->kind == ValueKind::kInteger && step != 1.0F) {
    hint += (hint.empty() ? "steps of " : ", steps of ") + ShortText(step);
  }
  return hint;
}
