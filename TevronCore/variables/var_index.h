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

  /// Where the position of the variable with this text stands: kNone when there is none yet, and
  /// to be replaced by that of one.
  uint32_t& Position(const std::vector<VarInfo>& vars, std::string_view text);

  /// The position of the variable with this text, kNone without one.
  uint32_t Find(const std::vector<VarInfo>& vars, std::string_view text) const;

  void Clear();

 private:
  struct Slot {
    uint32_t hash = 0;  // most other texts are told apart without looking at them
    uint32_t position = kNone;
  };

  size_t Find(const std::vector<VarInfo>& vars, std::string_view text, uint32_t hash) const;

  std::string VarInfo::*text_;
  std::vector<Slot> slots_;  // open addressing, at most half full
};
