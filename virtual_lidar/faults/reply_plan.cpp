#include "faults/reply_plan.h"

#include <string>
#include <utility>

namespace {

using Bytes = std::vector<uint8_t>;
using std::chrono::milliseconds;

constexpr milliseconds kByteGap{2};
constexpr milliseconds kBabbleGap{5};
// Long enough for a client to have taken the first copy and asked for something else.
constexpr milliseconds kSecondCopyGap{20};

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

// The pieces in which a frame leaves.
void CutIntoSteps(const WireCodec& codec, uint8_t command, const Bytes& frame, FaultBox* faults,
                  std::vector<SendStep>* steps) {
  size_t whole = frame.size();
  milliseconds gap = kByteGap;
  if (faults->Strike(Fault::kSplit, command)) {
    whole = 0;
  } else if (const size_t header = codec.HeaderSize(frame); header < frame.size()) {
    if (const auto drip_ms = faults->Strike(Fault::kDrip, command)) {
      whole = header;
      gap = milliseconds(*drip_ms);
    }
  }
  const auto rest = frame.begin() + static_cast<std::ptrdiff_t>(whole);
  if (whole > 0) {
    steps->push_back({milliseconds(0), Bytes(frame.begin(), rest)});
  }
  for (auto byte = rest; byte != frame.end(); ++byte) {
    steps->push_back({gap, {*byte}});
  }
}

ReplyPlan PlanAnswer(const WireCodec& codec, DeviceReply reply, FaultBox* faults) {
  ReplyPlan plan;
  const uint8_t command = reply.code;
  if (reply.aftermath == Aftermath::kRestart) {
    plan.ending = ReplyPlan::Ending::kRestart;
  }
  if (reply.aftermath == Aftermath::kNoAnswer) {
    return plan;
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
  CutIntoSteps(codec, command, frame, faults, &plan.steps);
  plan.steps.front().wait += milliseconds(faults->Strike(Fault::kDelay, command).value_or(0));
  plan.steps.front().not_before = milliseconds(faults->Strike(Fault::kLate, command).value_or(0));
  if (faults->Strike(Fault::kTwice, command)) {
    plan.steps.push_back({kSecondCopyGap, frame});
  }
  return plan;
}

}  // namespace

ReplyPlan PlanReply(const WireCodec& codec, const DeviceRequest& request, DeviceReply reply,
                    FaultBox* faults) {
  ReplyPlan plan = PlanAnswer(codec, std::move(reply), faults);
  if (faults->Strike(Fault::kEcho, request.code)) {
    plan.echo = request.frame;
  }
  return plan;
}
