#include "faults/reply_plan.h"

#include <algorithm>
#include <string>
#include <utility>

namespace {

using Bytes = std::vector<uint8_t>;
using std::chrono::milliseconds;

constexpr milliseconds kByteGap{2};
constexpr milliseconds kBabbleGap{5};
constexpr milliseconds kFloodGap{1};
constexpr size_t kFloodPiece = 4096;
constexpr size_t kPayloadTooMuch = 16;
// Long enough for a client to have taken the first copy and asked for something else.
constexpr milliseconds kSecondCopyGap{20};

// Holds no frame identifier of any version and no '$'.
Bytes StrayBytes() {
  const std::string text = "stray bytes";
  return Bytes(text.begin(), text.end());
}

void CutInHalf(Bytes* bytes) { bytes->resize(bytes->size() / 2); }

// As many copies as fill a piece.
Bytes Copies(const Bytes& frame) {
  Bytes copies = frame;
  while (copies.size() < kFloodPiece) {
    copies.insert(copies.end(), frame.begin(), frame.end());
  }
  return copies;
}

// What no client has asked for, now or before.
DeviceReply Unasked(DeviceReply reply) {
  reply.code = static_cast<uint8_t>(reply.code + 0x20);
  ++reply.number;
  return reply;
}

// A restart drops every link by itself, and is carried out whatever becomes of its answer.
void EndWith(ReplyPlan::Ending ending, ReplyPlan* plan) {
  if (plan->ending != ReplyPlan::Ending::kRestart) {
    plan->ending = ending;
  }
}

// The frame itself, cut, changed or doubled.
Bytes BendFrame(const WireCodec& codec, const DeviceReply& reply, FaultBox* faults,
                ReplyPlan* plan) {
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
    EndWith(ReplyPlan::Ending::kHangUp, plan);
  } else if (faults->Strike(Fault::kTruncate, command)) {
    CutInHalf(&frame);
  }
  const auto put_ahead = [&frame](const Bytes& bytes) {
    frame.insert(frame.begin(), bytes.begin(), bytes.end());
  };
  if (faults->Strike(Fault::kUnasked, command)) {
    put_ahead(codec.Encode(Unasked(reply)));
  }
  if (faults->Strike(Fault::kForeign, command)) {
    put_ahead(codec.EncodeForeign(reply));
  }
  if (faults->Strike(Fault::kGarbage, command)) {
    put_ahead(StrayBytes());
  }
  return frame;
}

// The pieces in which a frame leaves.
void CutIntoSteps(const WireCodec& codec, uint8_t command, const Bytes& frame, FaultBox* faults,
                  std::vector<SendStep>* steps) {
  const size_t header = std::min(codec.HeaderSize(frame), frame.size());
  size_t first = frame.size();  // of those that leave one by one
  size_t end = frame.size();
  milliseconds gap = kByteGap;
  if (faults->Strike(Fault::kSplit, command)) {
    first = 0;
  } else if (const auto header_ms = faults->Strike(Fault::kDripHeader, command)) {
    first = 0;
    end = header;
    gap = milliseconds(*header_ms);
  } else if (header < frame.size()) {
    if (const auto drip_ms = faults->Strike(Fault::kDrip, command)) {
      first = header;
      gap = milliseconds(*drip_ms);
    }
  }
  const auto at = [&frame](size_t i) { return frame.begin() + static_cast<std::ptrdiff_t>(i); };
  if (first > 0) {
    steps->push_back({milliseconds(0), Bytes(at(0), at(first))});
  }
  for (auto byte = at(first); byte != at(end); ++byte) {
    steps->push_back({gap, {*byte}});
  }
  if (end < frame.size()) {
    steps->push_back({gap, Bytes(at(end), frame.end())});
  }
}

// What becomes of the answer's content, whatever frame it gets.
void BendReply(DeviceReply* reply, FaultBox* faults) {
  const uint8_t command = reply->code;
  if (!reply->payload.empty() && faults->Strike(Fault::kShort, command)) {
    CutInHalf(&reply->payload);
  }
  if (faults->Strike(Fault::kLong, command)) {
    reply->payload.insert(reply->payload.end(), kPayloadTooMuch, 0xEE);
  }
  if (faults->Strike(Fault::kWrongCommand, command)) {
    ++reply->code;
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
    EndWith(ReplyPlan::Ending::kHangUp, &plan);
    return plan;
  }
  if (faults->Strike(Fault::kReset, command)) {
    EndWith(ReplyPlan::Ending::kReset, &plan);
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
  if (faults->Strike(Fault::kFlood, command)) {
    plan.steps.push_back({kFloodGap, Copies(codec.Encode(reply))});
    plan.repeat = true;
    return plan;
  }

  BendReply(&reply, faults);
  const Bytes frame = BendFrame(codec, reply, faults, &plan);
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
