#include "variables/var_index.h"

#include <algorithm>
#include <functional>

namespace {

size_t PowerOfTwoAbove(size_t number) {
  size_t power = 2;
  while (power <= number) {
    power *= 2;
  }
  return power;
}

}  // namespace

VarIndex::VarIndex(std::string VarInfo::*text, size_t capacity)
    : text_(text), slots_(PowerOfTwoAbove(2 * capacity), kNone) {}

uint32_t& VarIndex::Slot(const std::vector<VarInfo>& vars, std::string_view text) {
  return slots_[SlotOf(vars, text)];
}

uint32_t VarIndex::Find(const std::vector<VarInfo>& vars, std::string_view text) const {
  return slots_[SlotOf(vars, text)];
}

void VarIndex::Clear() { std::fill(slots_.begin(), slots_.end(), kNone); }

size_t VarIndex::SlotOf(const std::vector<VarInfo>& vars, std::string_view text) const {
  const size_t mask = slots_.size() - 1;
  size_t slot = std::hash<std::string_view>()(text) & mask;
  while (slots_[slot] != kNone && vars[slots_[slot]].*text_ != text) {
    slot = (slot + 1) & mask;
  }
  return slot;
}
