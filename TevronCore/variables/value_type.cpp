#include "variables/value_type.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::array<ValueType, 19> kTypes = {{
    {"uint8", ValueKind::kInteger, 1, false, true},
    {"uint16", ValueKind::kInteger, 2, false, true},
    {"uint32", ValueKind::kInteger, 4, false, true},
    {"uint64", ValueKind::kInteger, 8, false, true},
    {"int8", ValueKind::kInteger, 1, true, true},
    {"int16", ValueKind::kInteger, 2, true, true},
    {"int32", ValueKind::kInteger, 4, true, true},
    {"int64", ValueKind::kInteger, 8, true, true},
    {"u32", ValueKind::kInteger, 4, false, true, true},
    {"u64", ValueKind::kInteger, 8, false, true, true},
    {"i32", ValueKind::kInteger, 4, true, true, true},
    {"i64", ValueKind::kInteger, 8, true, true, true},
    {"float32", ValueKind::kReal, 4, true, true},
    {"double", ValueKind::kReal, 8, true, true},
    {"string", ValueKind::kText, 0, false, false},
    {"raw", ValueKind::kRaw, 0, false, false},
    {"IP", ValueKind::kAddress, 4, false, true},
    {"MAC", ValueKind::kMac, 6, false, true},
    {"DT", ValueKind::kDuration, 0, false, false},
}};

}  // namespace

const ValueType& ValueTypeOf(std::string_view name) {
  const auto* found = std::find_if(kTypes.begin(), kTypes.end(),
                                   [name](const ValueType& type) { return type.name == name; });
  return found == kTypes.end() ? kUnknownType : *found;
}
