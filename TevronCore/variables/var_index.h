#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "variables/var_info.h"

/// Finds the variables of a table by one of their texts. Holds positions only; the texts stay in
/// the variables.
class VarIndex {
 public:
  static constexpr uint32_t kNone = UINT32_MAX;

  /// For at most `capacity` variables, by this member.
  VarIndex(std::string VarInfo::*text, size_t capacity);

  /// Where the position of the variable with this text stands: kNone when there is none yet. What
  /// is stored there has to be the position of one that has it.
  uint32_t& Slot(const std::vector<VarInfo>& vars, std::string_view text);

  /// The position of the variable with this text, kNone without one.
  uint32_t Find(const std::vector<VarInfo>& vars, std::string_view text) const;

  void Clear();

 private:
  size_t SlotOf(const std::vector<VarInfo>& vars, std::string_view text) const;

  std::string VarInfo::*text_;
  std::vector<uint32_t> slots_;  // open addressing, at most half full
};
