#include "auth/session_key.h"

namespace {

uint32_t ReverseBytes(uint32_t value) {
  return value << 24 | (value & 0xFF00U) << 8 | (value >> 8 & 0xFF00U) | value >> 24;
}

uint32_t SwapHalves(uint32_t value) { return value << 16 | value >> 16; }

uint32_t Bit(uint32_t value, unsigned position) { return value >> position & 1U; }

uint16_t StepCount(uint32_t crc, uint32_t maskword, const MixConstants& constants) {
  const uint32_t selector = Bit(maskword, 16) << 1 | Bit(maskword, 14);
  const uint32_t picked = crc >> (24 - 8 * selector) & 0xFFU;
  const uint32_t k = (maskword >> 23 & 0x1FFU) ^ ~90U;
  const uint32_t base = (maskword >> 3 & constants.c1 & k & 0xFFU) ^ (picked & k);
  const uint32_t extra = (maskword ^ constants.c2) >> 14 & 0xFFU;
  return static_cast<uint16_t>(base + extra);
}

}  // namespace

uint32_t MixSessionKey(uint32_t crc, uint32_t maskword, const MixConstants& constants) {
  uint32_t state = ReverseBytes(crc);
  for (uint16_t left = StepCount(crc, maskword, constants); left > 0; --left) {
    const uint32_t feedback = Bit(state, 3) ^ Bit(state, 13) ^ Bit(state, 24) ^ Bit(state, 29);
    state = state << 1 | feedback;
  }
  if (Bit(maskword, 1) != 0) {
    state = SwapHalves(state);
  }
  return ReverseBytes(state ^ maskword);
}
