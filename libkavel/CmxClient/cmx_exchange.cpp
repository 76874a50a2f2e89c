#include "CmxClient/cmx_exchange.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "CmxClient/command_sender.h"
#include "Log/logger.h"
#include "Wire/big_endian.h"

namespace kavel::lidar {
namespace {

using std::chrono::milliseconds;

constexpr uint32_t kDrainTimeoutMs = 50;
/// So long is silence waited for where a fence follows, which copes with a lidar that babbles.
constexpr uint32_t kFencedDrainMs = 200;
constexpr size_t kDrainBlockSize = 1500;
/// More than a receive buffer holds is a lidar that babbles.
constexpr size_t kMostWaiting = size_t{16} * 1024 * 1024;
constexpr uint32_t kLargePayload = 10240;
/// How far the buffer runs ahead of what has arrived.
constexpr size_t kPayloadStep = 65536;
/// A deadline that is nearer than the transport's time-out by less is not worth a system call.
constexpr uint32_t kDeadlineSlackMs = 5;

milliseconds TimeForPayload(uint32_t size) {
  constexpr uint64_t kBytesPerSecond = 65536;
  return milliseconds(uint64_t{size} * 1000 / kBytesPerSecond);
}

}  // namespace

CmxExchange::CmxExchange(std::shared_ptr<ClientBase> transport, uint8_t protocol_version,
                         Timeouts timeouts, Now now)
    : transport_(std::move(transport)),
      protocol_version_(protocol_version),
      layout_(CmxHeaderOf(protocol_version)),
      now_(std::move(now)),
      in_force_(timeouts),
      armed_recv_ms_(timeouts.recv_ms),
      owed_(layout_) {}

void CmxExchange::UseTimeouts(Timeouts timeouts) {
  transport_->SetTimeout(timeouts.recv_ms, timeouts.send_ms);
  armed_recv_ms_ = timeouts.recv_ms;
  in_force_ = timeouts;
}

CmxExchange::Outcome CmxExchange::Run(uint8_t cmd, const std::vector<uint8_t>& payload,
                                      ByteSink* sink, ReplyProgress* progress) {
  Outcome outcome;
  outcome.error = kSendIncomplete;
  progress_ = progress;
  told_by_transport_ = transport_->TakeSink(sink);
  // Until an answer is there, the next exchange must expect one that comes late.
  const bool expect_late = std::exchange(silent_, true);
  if (!CanBeFramed(payload)) {
    return outcome;
  }
  ArmReceiveTimeout(in_force_.recv_ms);
  owed_.Forget();
  const OwedAnswers::Kind kind = KindOf(cmd, payload);
  if (!ClearTheLine(kind, expect_late)) {
    KAVEL_LOG(kWarning, "the lidar does not answer the liveness command that clears the line");
    return outcome;
  }
  std::vector<uint8_t> frame = BuildCmxFrame(*layout_, cmd, 0, payload);
  const bool sent = Send(kind, frame);
  if (sink != nullptr && !told_by_transport_) {
    sink->Sent({cmd, payload}, frame);
  }
  if (sent) {
    Receive(cmd, kind, outcome);
  }
  if (outcome.accepted && stale_input_ == StaleInput::kAfterTrouble &&
      last_answer_.MayBeCopied(cmd, payload, outcome.payload)) {
    LookBehindCopy(cmd, outcome);
  }
  silent_ = outcome.header.empty();
  return outcome;
}

bool CmxExchange::CanBeFramed(const std::vector<uint8_t>& payload) const {
  constexpr size_t kMaxFrameSize = std::numeric_limits<uint16_t>::max();
  if (layout_ == nullptr) {
    KAVEL_LOG(kError, "no frames are known for protocol version %u", unsigned{protocol_version_});
    return false;
  }
  if (payload.size() + layout_->size > kMaxFrameSize) {
    KAVEL_LOG(kError, "a payload of %llu bytes does not fit into one frame",
              static_cast<unsigned long long>(payload.size()));
    return false;
  }
  return true;
}

OwedAnswers::Kind CmxExchange::KindOf(uint8_t cmd, const std::vector<uint8_t>& payload) const {
  if (!IsLiveness(cmd)) {
    return OwedAnswers::Kind::kOther;
  }
  return payload.empty() ? OwedAnswers::Kind::kLiveness : OwedAnswers::Kind::kSameCode;
}

bool CmxExchange::Send(OwedAnswers::Kind kind, std::vector<uint8_t>& frame) {
  const auto size = static_cast<uint16_t>(frame.size());
  const int32_t sent = transport_->Send(frame.data(), size, 0);
  if (sent == size) {
    owed_.Sent(kind);
    return true;
  }
  KAVEL_LOG(kWarning, "send failure, %d.", sent);
  if (sent > 0) {
    owed_.Strayed();
  }
  return false;
}

// Keeps what earlier exchanges have left, or may still bring, away from the answer to a command.
// False when the command must not follow.
bool CmxExchange::ClearTheLine(OwedAnswers::Kind kind, bool expect_late) {
  const bool is_fenced = stale_input_ == StaleInput::kAfterTrouble;
  const bool has_fence = is_fenced && liveness_ != kNoLiveness;
  if (is_fenced && !expect_late && DropWaitingInput()) {
    owed_.Strayed();
  }
  // What was only doubled, or came with stray bytes, is left behind by the fence alone.
  if (expect_late || (!has_fence && (!is_fenced || owed_.Others()))) {
    DrainUntilSilent(has_fence ? std::min(kFencedDrainMs, in_force_.recv_ms) : in_force_.recv_ms);
  }
  if (has_fence && owed_.Others() && !FenceOff()) {
    return false;
  }
  return !has_fence || owed_.MayFollow(kind);
}

// Whether there was any.
bool CmxExchange::DropWaitingInput() {
  std::array<uint8_t, kDrainBlockSize> block;
  size_t dropped = 0;
  int32_t count = 0;
  do {
    count = transport_->Receive(block.data(), kDrainBlockSize, ClientBase::kPoll);
    LookThrough(block.data(), count);
    dropped += count > 0 ? static_cast<size_t>(count) : 0;
  } while (count == static_cast<int32_t>(kDrainBlockSize) && dropped < kMostWaiting);
  return dropped > 0;
}

// A lidar that never falls silent must not hold the exchange for ever: after `limit_ms` it goes on.
void CmxExchange::DrainUntilSilent(uint32_t limit_ms) {
  std::array<uint8_t, kDrainBlockSize> block;
  const auto deadline = now_() + milliseconds(limit_ms);
  transport_->SetTimeout(kDrainTimeoutMs, kDrainTimeoutMs);
  int32_t count = 0;
  do {
    count = transport_->Receive(block.data(), kDrainBlockSize, 0);
    LookThrough(block.data(), count);
  } while (count > 0 && now_() < deadline);
  if (count < 1) {
    owed_.Forget();  // a frame that falls silent half-way was cut
  }
  transport_->SetTimeout(in_force_.recv_ms, in_force_.send_ms);
  armed_recv_ms_ = in_force_.recv_ms;
}

void CmxExchange::LookThrough(const uint8_t* data, int32_t size) {
  const int liveness = liveness_;
  if (size > 0 && liveness != kNoLiveness) {
    owed_.LookThrough(data, static_cast<size_t>(size), static_cast<uint8_t>(liveness));
  }
}

// Sends the liveness command ahead and drops what comes up to its answer; sends it again as long as
// that may have been the answer to an earlier one. True when nothing that arrives from then on can
// be taken for the answer to a command that follows.
bool CmxExchange::FenceOff() {
  std::vector<uint8_t> frame = BuildCmxFrame(*layout_, static_cast<uint8_t>(liveness_), 0, {});
  const auto deadline = now_() + milliseconds(in_force_.recv_ms);
  std::array<uint8_t, kDrainBlockSize> block;
  while (owed_.Others()) {
    if (!Send(OwedAnswers::Kind::kLiveness, frame)) {
      return false;
    }
    while (!owed_.HasCounted()) {
      const int32_t count = ReceiveBy(deadline, block.data(), kDrainBlockSize);
      if (count < 1) {
        return false;
      }
      LookThrough(block.data(), count);
    }
    DropWaitingInput();  // a second copy
  }
  return true;
}

void CmxExchange::Receive(uint8_t cmd, OwedAnswers::Kind kind, Outcome& outcome) {
  bool has_stray_bytes = false;
  if (!ReceiveHeader(cmd, outcome.header, has_stray_bytes)) {
    outcome.header.clear();
    outcome.error = kNoReply;
    return;
  }
  if (!IsAnswerTo(cmd, outcome.header)) {
    outcome.error = outcome.header[layout_->return_code_at];
    return;
  }
  const bool is_whole = TakeAnswer(outcome);
  owed_.Answered(kind);
  if (has_stray_bytes || !is_whole) {
    owed_.Strayed();
  }
}

// What follows the header of the command's answer. Whether nothing of that answer is left behind.
bool CmxExchange::TakeAnswer(Outcome& outcome) {
  outcome.error = outcome.header[layout_->return_code_at];
  const uint32_t length = PayloadLengthIn(outcome.header);
  if (progress_ != nullptr) {
    progress_->announced = length;
  }
  // The payload of a refusal is left where it is.
  const auto deadline = now_() + milliseconds(in_force_.recv_ms) + TimeForPayload(length);
  outcome.accepted =
      outcome.error == 0 && ReceivePayload(outcome.payload, length, deadline, progress_);
  if (outcome.error == 0 && !outcome.accepted) {
    outcome.header.clear();
    outcome.payload.clear();
    outcome.error = kReplyBrokeOff;
  }
  return outcome.accepted || length == 0;
}

// The answer to this very request, if another one has come: then it stands behind a copy.
void CmxExchange::LookBehindCopy(uint8_t cmd, Outcome& outcome) {
  bool has_stray_bytes = false;
  Outcome behind;
  if (!FindHeader(now_() + milliseconds(kDrainTimeoutMs), behind.header, has_stray_bytes)) {
    if (has_stray_bytes || !behind.header.empty()) {
      owed_.Strayed();
    }
    return;
  }
  owed_.Strayed();
  LookThrough(behind.header.data(), static_cast<int32_t>(behind.header.size()));
  if (IsAnswerTo(cmd, behind.header)) {
    TakeAnswer(behind);
    outcome = std::move(behind);
  }
}

// Receives the next header that may be the answer's.
bool CmxExchange::ReceiveHeader(uint8_t cmd, std::vector<uint8_t>& header, bool& has_stray_bytes) {
  // Other bytes may come and come: the search ends as if there had been silence.
  const auto deadline = now_() + milliseconds(in_force_.recv_ms);
  while (FindHeader(deadline, header, has_stray_bytes)) {
    if (!PassOver(cmd, header, deadline)) {
      return true;
    }
    header.clear();
    has_stray_bytes = true;
  }
  return false;
}

bool CmxExchange::FindHeader(Clock::time_point deadline, std::vector<uint8_t>& header,
                             bool& has_stray_bytes) {
  const std::array<uint8_t, 2> identifier = {layout_->identifier_1, layout_->identifier_2};
  std::array<uint8_t, kMaxCmxHeaderSize> block;
  while (header.size() < layout_->size) {
    const int32_t count = ReceiveBy(deadline, block.data(), layout_->size - header.size());
    if (count < 1) {
      return false;
    }
    auto first = block.begin();
    const auto end = first + count;
    if (header.empty()) {
      first = std::search(first, end, identifier.begin(), identifier.end());
      has_stray_bytes |= first != block.begin();
    }
    header.insert(header.end(), first, end);
  }
  return true;
}

// An answer to another liveness command says nothing about this command: it comes late, or it is a
// second copy of the answer to the one that went ahead, which would fail every command otherwise.
bool CmxExchange::PassOver(uint8_t cmd, const std::vector<uint8_t>& header,
                           Clock::time_point deadline) {
  const uint8_t answered = header[layout_->command_at];
  if (stale_input_ != StaleInput::kAfterTrouble || answered == cmd || !IsLiveness(answered)) {
    return false;
  }
  std::vector<uint8_t> payload;
  const bool whole = ReceivePayload(payload, PayloadLengthIn(header), deadline, nullptr);
  if (whole) {
    owed_.Answered(OwedAnswers::Kind::kLiveness);
  }
  return whole;
}

bool CmxExchange::IsAnswerTo(uint8_t cmd, const std::vector<uint8_t>& header) const {
  const unsigned return_code = header[layout_->return_code_at];
  const uint8_t answered = header[layout_->command_at];
  if (answered == cmd && return_code == 0) {
    return true;
  }
  // The two texts differ by a blank, and are meant to: they tell the versions apart in a log.
  if (protocol_version_ == 1) {
    KAVEL_LOG(kWarning, "CmxClient::QueryCommand, RspCode invalid:%u, return_cmd:%u, cmd:%u",
              return_code, unsigned{answered}, unsigned{cmd});
  } else {
    KAVEL_LOG(kWarning, "CmxClient::QueryCommand,RspCode invalid:%u, return_cmd:%u, cmd:%u",
              return_code, unsigned{answered}, unsigned{cmd});
  }
  return answered == cmd;
}

uint32_t CmxExchange::PayloadLengthIn(const std::vector<uint8_t>& header) const {
  return ReadBigEndian32(header.data() + layout_->payload_length_at);
}

bool CmxExchange::ReceivePayload(std::vector<uint8_t>& payload, uint32_t length,
                                 Clock::time_point deadline, ReplyProgress* progress) {
  if (length > kLargePayload) {
    KAVEL_LOG(kWarning, "CmxClient::QueryCommand, warning, nPayLoadLen too large:%d",
              static_cast<int>(length));
  }
  if (length > kMaxPayload) {
    return false;
  }
  size_t received = 0;
  while (received < length) {
    const size_t step = std::min<size_t>(length - received, kPayloadStep);
    payload.resize(received + step);
    const int32_t count = ReceiveBy(deadline, payload.data() + received, step);
    if (count < 1) {
      return false;
    }
    received += static_cast<size_t>(count);
    if (progress != nullptr) {
      progress->received = static_cast<uint32_t>(received);
      if (progress->unwanted) {
        return false;
      }
    }
  }
  return true;
}

// One receive that waits no longer than the deadline allows. Returns -1 when that has passed.
int32_t CmxExchange::ReceiveBy(Clock::time_point deadline, uint8_t* buffer, size_t size) {
  const auto left = std::chrono::ceil<milliseconds>(deadline - now_()).count();
  if (left <= 0) {
    return -1;
  }
  const auto wait_ms = static_cast<uint32_t>(std::min<int64_t>(left, in_force_.recv_ms));
  const uint32_t difference = std::max(wait_ms, armed_recv_ms_) - std::min(wait_ms, armed_recv_ms_);
  if (difference > kDeadlineSlackMs) {
    ArmReceiveTimeout(wait_ms);
  }
  return transport_->Receive(buffer, static_cast<uint32_t>(size), 0);
}

void CmxExchange::ArmReceiveTimeout(uint32_t ms) {
  if (ms != armed_recv_ms_) {
    transport_->SetReceiveTimeout(ms);
    armed_recv_ms_ = ms;
  }
}

}  // namespace kavel::lidar
