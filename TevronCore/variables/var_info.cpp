#include "variables/var_info.h"

void SetValueType(std::string_view name, VarInfo* var) {
  var->var_type = name;
  var->value_type = &ValueTypeOf(name);
}

bool CanBeChanged(const VarInfo& var) {
  return var.permission != 0 && !var.set_cmd.empty() && var.value_type->has_input;
}

std::string SwitchIndexOf(const std::string& text) { return text == "0" ? "0" : "1"; }
