#include "variables/var_info.h"

#include <algorithm>
#include <array>

namespace {

struct TypeTraits {
  std::string_view name;
  int32_t length;  // 0: the table says
  bool is_integer;
  bool has_parser;
};

constexpr std::array<TypeTraits, 15> kTypes = {{
    {"uint8", 1, true, true},
    {"uint16", 2, true, true},
    {"uint32", 4, true, true},
    {"uint64", 8, true, true},
    {"int8", 1, true, true},
    {"int16", 2, true, true},
    {"int32", 4, true, true},
    {"int64", 8, true, true},
    {"float32", 4, false, true},
    {"double", 8, false, true},
    {"string", 0, false, false},
    {"raw", 0, false, false},  // its parser gives no bytes
    {"IP", 4, false, true},
    {"MAC", 6, false, true},
    {"DT", 0, false, false},
}};

const TypeTraits* FindType(std::string_view name) {
  const auto* found = std::find_if(kTypes.begin(), kTypes.end(),
                                   [name](const TypeTraits& type) { return type.name == name; });
  return found == kTypes.end() ? nullptr : found;
}

}  // namespace

bool CanBeChanged(const VarInfo& var) {
  const TypeTraits* type = FindType(var.var_type);
  return var.permission != 0 && !var.set_cmd.empty() && type != nullptr && type->has_parser;
}

int32_t NaturalLength(std::string_view var_type) {
  const TypeTraits* type = FindType(var_type);
  return type == nullptr ? 0 : type->length;
}

bool IsKnownType(std::string_view var_type) { return FindType(var_type) != nullptr; }

bool IsIntegerType(std::string_view var_type) {
  const TypeTraits* type = FindType(var_type);
  return type != nullptr && type->is_integer;
}

std::string SwitchIndexOf(const std::string& text) { return text == "0" ? "0" : "1"; }
