#include "CmxClient/serial_client.h"

#include <utility>

#include "CmxClient/hex_text.h"
#include "Wire/serial_frame.h"

namespace kavel::lidar {
namespace {

constexpr uint8_t kSwitchModeCommand = 3;
constexpr uint32_t kSwitchModeTimeoutMs = 3000;
constexpr size_t kSwitchModeInnerSize = 5;

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
  std::vector<uint8_t> block;
  const int32_t code =
      ExchangeBlock(BuildSerialFrame(cmd, payload), kSerialBlockSize, timeout_ms, block);
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

int32_t SerialClient::ExchangeBlock(const std::vector<uint8_t>& frame, size_t max_block,
                                    uint32_t timeout_ms, std::vector<uint8_t>& block) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!IsOpen()) {
    return kSerialNotReady;
  }
  WriteToSink("SEND: ", frame);
  answers_->SetReceiveMode(kModeEmptyBuffer);
  if (!SendFrame(frame)) {
    return kSerialNotReady;
  }
  if (answers_->ReceiveBlock(block, max_block, timeout_ms) < 0) {
    return kSerialNoAnswer;
  }
  WriteToSink("RECV: ", block);
  return 0;
}

// A frame that was cut short can have no answer, so it counts as not sent.
bool SerialClient::SendFrame(const std::vector<uint8_t>& frame) {
  const int32_t sent = requests_->port()->Write(frame.data(), frame.size(), send_timeout_ms_);
  return sent >= 0 && static_cast<size_t>(sent) == frame.size();
}

std::string SerialClient::LastError() const {
  for (const auto& line : {requests_, answers_}) {
    if (line != nullptr && !line->LastError().empty()) {
      return line->LastError();
    }
  }
  return {};
}

void SerialClient::SetLogSink(std::shared_ptr<LogSink> sink) {
  const std::lock_guard<std::mutex> lock(sink_mutex_);
  sink_ = std::move(sink);
}

void SerialClient::WriteToSink(const char* tag, const std::vector<uint8_t>& bytes) {
  std::shared_ptr<LogSink> sink;
  {
    const std::lock_guard<std::mutex> lock(sink_mutex_);
    sink = sink_;
  }
  if (sink != nullptr) {
    sink->WriteLine(tag + HexText(bytes));
  }
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
