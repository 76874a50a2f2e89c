#include "CmxClient/serial_client.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "Wire/serial_frame.h"

namespace kavel::lidar {
namespace {

constexpr uint8_t kSwitchModeCommand = 3;
constexpr uint32_t kSwitchModeTimeoutMs = 3000;
constexpr size_t kSwitchModeInnerSize = 5;

// A sound answer to another request than the one with this number. A long request is answered by a
// long frame; a damaged block may be anything.
bool AnswersAnother(const std::vector<uint8_t>& block, uint8_t number) {
  OtaAnswer answer;
  if (ParseOtaFrame(block, &answer)) {
    return answer.number != number;
  }
  std::vector<uint8_t> inner;
  return number != kOtaUnnumbered && ParseSerialResponse(block, inner);
}

bool IsOfAnotherCommand(const std::vector<uint8_t>& block, uint8_t cmd) {
  OtaAnswer answer;
  if (ParseOtaFrame(block, &answer)) {
    return answer.cmd != cmd;
  }
  std::vector<uint8_t> inner;
  return ParseSerialResponse(block, inner) && inner[1] != cmd;
}

}  // namespace

SerialClient::SerialClient(std::shared_ptr<SerialSource> requests,
                           std::shared_ptr<SerialSource> answers)
    : requests_(std::move(requests)), answers_(std::move(answers)) {}

SerialClient::~SerialClient() { Close(); }

bool SerialClient::IsOpen() const {
  return !interrupted_ && requests_ != nullptr && requests_->IsOpened() && answers_ != nullptr &&
         answers_->IsOpened();
}

int32_t SerialClient::SendCommand(uint8_t cmd, const std::vector<uint8_t>& payload,
                                  std::vector<uint8_t>& result, uint32_t timeout_ms) {
  if (payload.size() > kSerialMaxPayload) {
    return kSerialNotReady;
  }
  std::shared_ptr<ByteSink> sink;
  {
    const std::lock_guard<std::mutex> lock(sink_mutex_);
    sink = sink_;
  }
  std::vector<uint8_t> block;
  const int32_t code = Run(cmd, payload, kSerialBlockSize, timeout_ms, block, sink.get());
  if (code != 0) {
    return code;
  }
  return ParseSerialResponse(block, result) ? 0 : kSerialBadAnswer;
}

int32_t SerialClient::SwitchMode(uint8_t mode, uint8_t sub_mode) {
  std::vector<uint8_t> inner;
  const int32_t code =
      SendCommand(kSwitchModeCommand, {mode, sub_mode}, inner, kSwitchModeTimeoutMs);
  if (code != 0) {
    return code;
  }
  if (inner.size() != kSwitchModeInnerSize || inner[1] != kSwitchModeCommand || inner[2] != mode) {
    return kSerialBadAnswer;
  }
  return inner[4];
}

int32_t SerialClient::Exchange(uint8_t cmd, const std::vector<uint8_t>& payload,
                               uint32_t timeout_ms, std::vector<uint8_t>& block, ByteSink* sink) {
  return Run(cmd, payload, kOtaMaxPayload + kOtaUncounted, timeout_ms, block, sink);
}

int32_t SerialClient::Run(uint8_t cmd, const std::vector<uint8_t>& payload, size_t max_block,
                          uint32_t timeout_ms, std::vector<uint8_t>& block, ByteSink* sink) {
  const std::lock_guard<TicketMutex> lock(mutex_);
  if (!IsOpen()) {
    return kSerialNotReady;
  }
  uint8_t number = kOtaUnnumbered;
  std::vector<uint8_t> frame;
  if (payload.size() <= kSerialMaxPayload) {
    frame = BuildSerialFrame(cmd, payload);
  } else {
    number = NextNumber();
    frame = BuildOtaFrame(OtaRequest{number, cmd, payload});
  }
  if (sink != nullptr) {
    sink->Sent({cmd, payload}, frame);
  }
  answers_->SetReceiveMode(kModeEmptyBuffer);
  if (!SendFrame(frame, send_timeout_ms_)) {
    return kSerialNotReady;
  }
  if (!ReceiveAnswer(cmd, number, max_block, timeout_ms, block)) {
    return kSerialNoAnswer;
  }
  if (sink != nullptr) {
    sink->Received(block);
  }
  return 0;
}

uint8_t SerialClient::NextNumber() {
  ++last_number_;
  if (last_number_ == kOtaUnnumbered) {
    ++last_number_;
  }
  return last_number_;
}

// An answer to an earlier request may come in front of the one that is waited for. One that only
// its command tells apart is handed out all the same when no other comes.
bool SerialClient::ReceiveAnswer(uint8_t cmd, uint8_t number, size_t max_block, uint32_t timeout_ms,
                                 std::vector<uint8_t>& block) {
  using Clock = std::chrono::steady_clock;
  const auto deadline = Clock::now() + std::chrono::milliseconds(timeout_ms);
  std::vector<uint8_t> second_best;
  do {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    const auto wait_ms = static_cast<uint32_t>(std::max<int64_t>(left.count(), 0));
    if (answers_->ReceiveBlock(block, max_block, wait_ms) < 0) {
      break;
    }
    if (AnswersAnother(block, number)) {
      continue;
    }
    if (!IsOfAnotherCommand(block, cmd)) {
      return true;
    }
    second_best = std::move(block);
  } while (Clock::now() < deadline);
  block = std::move(second_best);
  return !block.empty();
}

// A frame that was cut short can have no answer, so it counts as not sent.
bool SerialClient::SendFrame(const std::vector<uint8_t>& frame, uint32_t stall_ms) {
  const int32_t sent = requests_->port()->Write(frame.data(), frame.size(), stall_ms);
  return sent >= 0 && static_cast<size_t>(sent) == frame.size();
}

SerialSource::Counters SerialClient::AnswerCounters() const {
  return answers_ == nullptr ? SerialSource::Counters() : answers_->GetCounters();
}

int32_t SerialClient::SetBaudRate(uint32_t requests_bps, uint32_t answers_bps) {
  const std::lock_guard<TicketMutex> lock(mutex_);
  if (!IsOpen() || !requests_->SetBaudRate(requests_bps)) {
    return kSerialNotReady;
  }
  const bool applied = answers_ == requests_ || answers_->SetBaudRate(answers_bps);
  return applied ? 0 : kSerialNotReady;
}

SerialClient::Lease::Lease(SerialClient& client) : client_(client), turn_(client.mutex_) {
  if (IsOpen()) {
    client_.answers_->SetReceiveMode(kModeEmptyBuffer);
  }
}

uint32_t SerialClient::Lease::requests_bps() const {
  return client_.requests_->port()->baud_rate_bps();
}

uint32_t SerialClient::Lease::answers_bps() const {
  return client_.answers_->port()->baud_rate_bps();
}

uint8_t SerialClient::Lease::Send(uint8_t cmd, const std::vector<uint8_t>& payload,
                                  uint32_t stall_ms) {
  if (!IsOpen()) {
    return kOtaUnnumbered;
  }
  const uint8_t number = client_.NextNumber();
  const bool sent = client_.SendFrame(BuildOtaFrame(OtaRequest{number, cmd, payload}), stall_ms);
  return sent ? number : kOtaUnnumbered;
}

// Waits in short steps: a frame whose length arrived damaged hides the answers behind it until a
// wait ends.
bool SerialClient::Lease::Receive(OtaAnswer* answer,
                                  std::chrono::steady_clock::time_point deadline) {
  using Clock = std::chrono::steady_clock;
  constexpr std::chrono::milliseconds kStep{200};
  std::vector<uint8_t> block;
  do {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    const auto wait = std::clamp(left, std::chrono::milliseconds(0), kStep);
    const int32_t size = client_.answers_->ReceiveBlock(block, kOtaMaxPayload + kOtaUncounted,
                                                        static_cast<uint32_t>(wait.count()));
    if (size > 0 && ParseOtaFrame(block, answer)) {
      return true;
    }
  } while (IsOpen() && Clock::now() < deadline);
  return false;
}

std::string SerialClient::LastError() const {
  for (const auto& line : {requests_, answers_}) {
    if (line != nullptr && !line->LastError().empty()) {
      return line->LastError();
    }
  }
  return {};
}

void SerialClient::SetByteSink(std::shared_ptr<ByteSink> sink) {
  const std::lock_guard<std::mutex> lock(sink_mutex_);
  sink_ = std::move(sink);
}

void SerialClient::Interrupt() {
  interrupted_ = true;
  for (const auto& line : {requests_, answers_}) {
    if (line != nullptr) {
      line->Interrupt();
    }
  }
}

void SerialClient::Close() {
  Interrupt();
  for (const auto& line : {requests_, answers_}) {
    if (line != nullptr) {
      line->Close();
    }
  }
}

}  // namespace kavel::lidar
