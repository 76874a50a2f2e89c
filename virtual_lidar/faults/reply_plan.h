#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "faults/fault_modes.h"
#include "wire/message.h"
#include "wire/wire_codec.h"

/// Bytes that leave in one piece, after a wait behind the piece before.
struct SendStep {
  std::chrono::milliseconds wait{0};
  std::vector<uint8_t> bytes;
};

/// How one answer leaves: the pieces, and what happens behind the last of them.
struct ReplyPlan {
  enum class Ending { kStayOpen, kHangUp, kRestart };

  std::vector<SendStep> steps;
  /// Start again with the first step, without end.
  bool repeat = false;
  Ending ending = Ending::kStayOpen;
};

/// Frames an answer and bends it as the faults in force ask. Faults that act on the same thing do
/// not add up: one that keeps the answer back outranks one that changes it.
ReplyPlan PlanReply(const WireCodec& codec, DeviceReply reply, FaultBox* faults);
