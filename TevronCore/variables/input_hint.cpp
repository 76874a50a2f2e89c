#include "variables/input_hint.h"

#include <cmath>

#include "variables/exact_number.h"
#include "variables/field_group.h"
#include "variables/number_text.h"

namespace {

// What the encoder of these types lets through; see UnsignedBound there.
bool TakesOnlyZero(const ValueType& type) {
  return type.kind == ValueKind::kInteger && !type.is_signed && type.size >= 4 && !type.is_exact;
}

// How the type's own range looks after scaling, in words.
std::string TypeRange(const VarInfo& var) {
  const bool is_unsigned = !var.value_type->is_signed;
  const int32_t bytes = var.value_type->size;
  const float scale = var.set_coefficient;
  if (TakesOnlyZero(*var.value_type)) {
    return scale == 1.0F ? "Only 0 can be saved: " + var.var_type.str() + " takes no other value."
                         : "Only values from 0 up to, not including, " + ShortText(scale) +
                               " can be saved, and are stored as 0.";
  }
  if (var.value_type->is_exact) {
    return (scale == 1.0F ? "Whole number from "
                          : "Multiple of " + ShortText(std::fabs(scale)) + " from ") +
           ExactRange(*var.value_type, scale) + '.';
  }
  const double lowest = is_unsigned ? 0 : -std::ldexp(1.0, 8 * bytes - 1);
  const double highest = std::ldexp(1.0, is_unsigned ? 8 * bytes : 8 * bytes - 1) - 1;
  if (bytes >= 4) {
    return scale == 1.0F ? "Whole number; more than seven digits are rounded."
                         : "Number; more than seven digits are rounded.";
  }
  const double factor = AsWritten(scale);
  const bool falling = factor < 0;
  const auto text = [factor](double value) {
    return ShortText(static_cast<float>(value * factor));
  };
  return (scale == 1.0F ? "Whole number from " : "Number from ") +
         text(falling ? highest : lowest) + " to " + text(falling ? lowest : highest) + ".";
}

std::string Format(const VarInfo& var) {
  if (!TakesOnlyZero(*var.value_type)) {
    if (var.type == kChoice || var.type == kTallChoice) {
      return "Choose one of the entries.";
    }
    if (var.type == kSwitch && var.range_max == 0) {
      return "Switch: 0 is off.";
    }
  }
  switch (var.value_type->kind) {
    case ValueKind::kAddress:
      return "IPv4 address, such as 192.168.1.201.";
    case ValueKind::kMac:
      return "MAC address, such as 00:1A:2B:3C:4D:5E.";
    case ValueKind::kInteger:
      return TypeRange(var);
    default:
      return "Number with \".\" as decimal point.";
  }
}

std::string Refusal(const VarInfo& var) {
  if (var.permission == 0) {
    return "Read-only.";
  }
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
  return "Cannot be changed: there is no way to enter the type \"" + var.var_type.str() + "\".";
}

std::string Range(const VarInfo& var) {
  if (var.range_min == 0 && var.range_max == 0) {
    return {};
  }
  std::string text =
      " Allowed: " + std::to_string(var.range_min) + " to " + std::to_string(var.range_max);
  if (var.type == kSwitch && var.range_min > 0) {
    text += ", or 0 for off";
  }
  if (!var.switch_var_id.empty()) {
    text += ", while the switch it depends on is on";
  }
  return text + ".";
}

}  // namespace

std::string InputHint(const VarInfo& var) {
  std::string hint = CanBeChanged(var) ? Format(var) + Range(var) : Refusal(var);
  if (!var.unit.empty()) {
    hint += " Unit: " + var.unit.str() + ".";
  }
  return hint;
}
