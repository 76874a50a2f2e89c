#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "faults/fault_modes.h"
#include "wire/message.h"
#include "wire/wire_codec.h"

/// Bytes that leave in one piece.
struct SendStep {
  std::chrono::milliseconds wait{0};  ///< behind the piece before
  std::vector<uint8_t> bytes;
  std::chrono::milliseconds not_before{0};  ///< since the request came
};

/// How one answer leaves: the pieces, and what happens behind the last of them.
struct ReplyPlan {
  enum class Ending { kStayOpen, kHangUp, kReset, kRestart };

  std::vector<SendStep> steps;
  /// Goes back before anything else, by the line on which the request came.
  std::vector<uint8_t> echo;
  /// The last step again and again, without end.
  bool repeat = false;
  Ending ending = Ending::kStayOpen;
};

/// Frames the answer to a request and bends it as the faults in force ask. Faults that act on the
/// same thing do not add up: one that keeps the answer back outranks one that changes it.
ReplyPlan PlanReply(const WireCodec& codec, const DeviceRequest& request, DeviceReply reply,
                    FaultBox* faults);
