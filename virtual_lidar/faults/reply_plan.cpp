#include "faults/reply_plan.h"

#include <string>
#include <utility>

namespace {

using Bytes = std::vector<uint8_t>;

constexpr std::chrono::milliseconds kByteGap{2};
constexpr std::chrono::milliseconds kBabbleGap{5};

// Holds no frame identifier of any version and no '$'.
Bytes StrayBytes() {
  const std::string text = "stray bytes";
  return Bytes(text.begin(), text.end());
}

void CutInHalf(Bytes* frame) { frame->resize(frame->size() / 2); }

// The frame itself, cut, changed or doubled.
Bytes BendFrame(const WireCodec& codec, const DeviceReply& reply, FaultBox* faults,
                ReplyPlan::Ending* ending) {
  Bytes frame = codec.Encode(reply);
  const uint8_t command = reply.code;
  if (faults->Strike(Fault::kHugeLength, command)) {
    codec.OverstateLength(&frame);
  }
  if (faults->Strike(Fault::kCorrupt, command)) {
    codec.Damage(&frame);
  }
  if (faults->Strike(Fault::kStale, command)) {
    const Bytes copy = frame;
    frame.insert(frame.end(), copy.begin(), copy.end());
  }
  if (faults->Strike(Fault::kCloseMidReply, command)) {
    CutInHalf(&frame);
    *ending = ReplyPlan::Ending::kHangUp;
  } else if (faults->Strike(Fault::kTruncate, command)) {
    CutInHalf(&frame);
  }
  if (faults->Strike(Fault::kGarbage, command)) {
    const Bytes stray = StrayBytes();
    frame.insert(frame.begin(), stray.begin(), stray.end());
  }
  return frame;
}

}  // namespace

ReplyPlan PlanReply(const WireCodec& codec, DeviceReply reply, FaultBox* faults) {
  ReplyPlan plan;
  const uint8_t command = reply.code;
  if (reply.aftermath == Aftermath::kRestart) {
    plan.ending = ReplyPlan::Ending::kRestart;
  }
  if (reply.aftermath == Aftermath::kHangUpUnanswered ||
      faults->Strike(Fault::kCloseBeforeReply, command)) {
    plan.ending = ReplyPlan::Ending::kHangUp;
    return plan;
  }
  if (faults->Strike(Fault::kDrop, command)) {
    return plan;
  }
  if (faults->Strike(Fault::kBabble, command)) {
    plan.steps.push_back({kBabbleGap, StrayBytes()});
    plan.repeat = true;
    return plan;
  }

  if (faults->Strike(Fault::kWrongCommand, command)) {
    ++reply.code;
  }
  const Bytes frame = BendFrame(codec, reply, faults, &plan.ending);
  const std::chrono::milliseconds delay(faults->Strike(Fault::kDelay, command).value_or(0));
  if (faults->Strike(Fault::kSplit, command)) {
    for (const uint8_t byte : frame) {
      plan.steps.push_back({kByteGap, {byte}});
    }
    plan.steps.front().wait += delay;
  } else {
    plan.steps.push_back({delay, frame});
  }
  return plan;
}
