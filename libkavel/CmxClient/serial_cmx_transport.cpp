#include "CmxClient/serial_cmx_transport.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "Wire/big_endian.h"
#include "Wire/cmx_header.h"
#include "Wire/ota_stream.h"
#include "Wire/serial_frame.h"

namespace kavel::lidar {
namespace {

constexpr const CmxHeaderLayout& kHeader = kCmxHeader1;

// Inner bytes of an ordinary answer: length, command, return code, payload.
constexpr size_t kInnerPayloadOffset = 3;

// A time-out of 0 waits for ever, like a socket's; an interruption ends it all the same.
constexpr uint32_t kForeverMs = std::numeric_limits<int32_t>::max();

uint32_t OrForever(uint32_t timeout_ms) { return timeout_ms == 0 ? kForeverMs : timeout_ms; }

bool IsWholeCmxFrame(const uint8_t* data, size_t size) {
  return size >= kHeader.size && data[0] == kHeader.identifier_1 &&
         data[1] == kHeader.identifier_2 &&
         ReadBigEndian32(data + kHeader.payload_length_at) == size - kHeader.size;
}

}  // namespace

SerialCmxTransport::SerialCmxTransport(std::shared_ptr<SerialClient> client)
    : client_(std::move(client)) {}

bool SerialCmxTransport::Open(const std::string& /*ip*/, uint16_t /*port*/, bool /*auto_receive*/,
                              const char* /*cert*/, const char* /*private_key*/,
                              const char* /*ca*/) {
  return IsOpened();
}

bool SerialCmxTransport::TryOpen(uint16_t /*host_port*/, const std::string& /*ip*/,
                                 uint16_t /*port*/, bool /*auto_receive*/, const char* /*cert*/,
                                 const char* /*private_key*/, const char* /*ca*/,
                                 uint32_t /*timeout_s*/) {
  return IsOpened();
}

void SerialCmxTransport::Close() { client_->Close(); }

bool SerialCmxTransport::IsOpened() { return client_->IsOpen(); }

int32_t SerialCmxTransport::Send(uint8_t* data, uint16_t length, int32_t /*flags*/) {
  answer_.clear();
  handed_out_ = 0;
  if (!IsWholeCmxFrame(data, length)) {
    return -1;
  }
  const std::vector<uint8_t> payload(data + kHeader.size, data + length);
  return Exchange(data[kHeader.command_at], payload) ? length : -1;
}

// False when the request did not leave. Whether an answer came is for Receive to tell.
bool SerialCmxTransport::Exchange(uint8_t cmd, const std::vector<uint8_t>& payload) {
  std::vector<uint8_t> block;
  const int32_t code =
      client_->Exchange(cmd, payload, OrForever(receive_timeout_ms_), block, sink_);
  // A short request may have a long answer.
  if (code == 0) {
    IsOtaFrame(block) ? KeepLongAnswer(block) : KeepShortAnswer(block);
  }
  return code != kSerialNotReady;
}

void SerialCmxTransport::KeepShortAnswer(const std::vector<uint8_t>& block) {
  std::vector<uint8_t> inner;
  if (!ParseSerialResponse(block, inner) || inner.size() < kInnerPayloadOffset) {
    return;
  }
  answer_ = BuildCmxFrame(kHeader, inner[1], inner[2],
                          {inner.begin() + kInnerPayloadOffset, inner.end()});
}

void SerialCmxTransport::KeepLongAnswer(const std::vector<uint8_t>& block) {
  OtaAnswer answer;
  if (ParseOtaFrame(block, &answer)) {
    answer_ = BuildCmxFrame(kHeader, answer.cmd, answer.return_code, answer.payload);
  }
}

int32_t SerialCmxTransport::Receive(uint8_t* buffer, uint32_t length, int32_t /*flags*/) {
  const size_t count = std::min<size_t>(answer_.size() - handed_out_, length);
  if (count == 0) {
    return -1;
  }
  std::copy_n(answer_.data() + handed_out_, count, buffer);
  handed_out_ += count;
  return static_cast<int32_t>(count);
}

bool SerialCmxTransport::SetReceiveTimeout(uint32_t ms) {
  receive_timeout_ms_ = ms;
  return true;
}

int32_t SerialCmxTransport::SetTimeout(uint32_t recv_ms, uint32_t send_ms) {
  receive_timeout_ms_ = recv_ms;
  client_->SetSendTimeout(OrForever(send_ms));
  return 0;
}

bool SerialCmxTransport::TakeSink(ByteSink* sink) {
  sink_ = sink;
  return true;
}

void SerialCmxTransport::SetReceiveBufferSize(const uint32_t& /*bytes*/) {}

void SerialCmxTransport::Interrupt() { client_->Interrupt(); }

std::string SerialCmxTransport::OpenFailure() { return client_->LastError(); }

}  // namespace kavel::lidar
