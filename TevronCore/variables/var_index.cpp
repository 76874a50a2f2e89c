#include "variables/var_index.h"

#include <algorithm>

namespace {

size_t PowerOfTwoAbove(size_t number) {
  size_t power = 2;
  while (power <= number) {
    power *= 2;
  }
  return power;
}

// Neighbours in a table mostly have texts that differ in the last character. They get neighbouring
// slots, which are in the processor's cache already.
uint32_t HashOf(std::string_view text) {
  uint32_t hash = 0;
  for (const char character : text) {
    hash = hash * 37 + static_cast<uint8_t>(character);
  }
  return hash;
}

}  // namespace

VarIndex::VarIndex(std::string VarInfo::*text, size_t capacity)
    : text_(text), slots_(PowerOfTwoAbove(2 * capacity)) {}

uint32_t& VarIndex::Position(const std::vector<VarInfo>& vars, std::string_view text) {
  const uint32_t hash = HashOf(text);
  Slot& slot = slots_[Find(vars, text, hash)];
  slot.hash = hash;
  return slot.position;
}

uint32_t VarIndex::Find(const std::vector<VarInfo>& vars, std::string_view text) const {
  return slots_[Find(vars, text, HashOf(text))].position;
}

void VarIndex::Clear() { std::fill(slots_.begin(), slots_.end(), Slot()); }

size_t VarIndex::Find(const std::vector<VarInfo>& vars, std::string_view text,
                      uint32_t hash) const {
  const size_t mask = slots_.size() - 1;
  size_t slot = hash & mask;
  while (slots_[slot].position != kNone &&
         (slots_[slot].hash != hash || vars[slots_[slot].position].*text_ != text)) {
    slot = (slot + 1) & mask;
  }
  return slot;
}
