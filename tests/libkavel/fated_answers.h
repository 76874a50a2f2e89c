#pragma once

#include <algorithm>
#include <memory>

#include "CmxClient/cmx_exchange.h"
#include "Wire/cmx_header.h"
#include "libkavel/simulated_line.h"

/// Answers that come late, twice, cut, with another code or not at all, in the time of a simulated
/// line; and all orders of such fates.
namespace kavel::lidar::testing {

enum Fate { kInTime, kLateBy1, kLateBy2, kLateBy3, kTwice, kLost, kCut, kOtherCode, kFates };

constexpr uint32_t kTimeoutMs = 500;
constexpr uint8_t kLiveness = 0x07;
constexpr int kFated = 5;  ///< so many answers have a fate, later ones come in time
constexpr int kOrders = 1 << (3 * kFated);
static_assert(kFates == 1 << 3);

/// The fate of the next answer, taken off the order.
inline int TakeFate(int* order) {
  const int fate = *order % kFates;
  *order /= kFates;
  return fate;
}

/// Puts an answer on the line as its fate wants it. Returns when it arrives; now, when it is lost.
inline SimulatedLine::Time Arrive(SimulatedLine& line, int fate, const CmxHeaderLayout& layout,
                                  Bytes frame, SimulatedLine::Time copy_after = {}) {
  if (fate == kOtherCode) {
    frame[layout.command_at] ^= 0x80;
  }
  if (fate == kCut) {
    frame.resize(std::min(layout.size + 2, frame.size() - 2));
  }
  const auto late_by = static_cast<uint32_t>(fate >= kLateBy1 && fate <= kLateBy3 ? fate : 0);
  SimulatedLine::Time arrives = line.now();
  if (fate != kLost) {
    arrives = line.Arrive(SimulatedLine::Time(1 + late_by * (kTimeoutMs + 60)), frame);
  }
  if (fate == kTwice) {
    line.Arrive(SimulatedLine::Time(1) + copy_after, frame);
  }
  return arrives;
}

/// An exchange in the line's own time, as the tool uses it.
struct ExchangeOver : CmxExchange {
  explicit ExchangeOver(const std::shared_ptr<SimulatedLine>& line, uint8_t version = 1)
      : CmxExchange(line, version, {kTimeoutMs, kTimeoutMs}, line->clock()) {
    SetStaleInput(StaleInput::kAfterTrouble);
    SetLivenessCommand(kLiveness);
  }
};

}  // namespace kavel::lidar::testing
