#include "variables/var_info.h"

#include "variables/field_group.h"

void SetValueType(SharedText name, VarInfo* var) {
  var->var_type = name;
  var->value_type = &ValueTypeOf(name);
  var->offset = var->value_type->size == 0 ? 1 : var->value_type->size;
}

bool FillsItsPlace(const VarInfo& var) {
  return var.value_type->size == 0 || var.value_type->size == var.offset;
}

bool CanBeChanged(const VarInfo& var) {
  const bool is_written =
      !var.set_cmd.empty() && (var.write == nullptr || var.write->obstacle.empty());
  return var.permission != 0 && is_written && var.value_type->has_input && FillsItsPlace(var);
}

std::string_view GroupIdOf(const VarInfo& var) {
  return std::string_view(var.var_id).substr(0, var.group_id_size);
}

bool IsChecked(const VarInfo& var) { return var.permission != 0; }

int32_t LengthLimitOf(const VarInfo& var) {
  const ValueKind kind = var.value_type->kind;
  return kind == ValueKind::kText || kind == ValueKind::kRaw ? var.offset : 0;
}

std::string UnitSuffix(const VarInfo& var) {
  return var.unit.empty() ? std::string() : " (" + var.unit.str() + ')';
}

int OptionIndexOf(const Control& control, const std::string& value) {
  for (size_t i = 0; i < control.options.size(); ++i) {
    if (std::to_string(control.options[i].value) == value) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

std::string SwitchIndexOf(const std::string& text) { return text == "0" ? "0" : "1"; }
