#include "wire/serial_codec.h"

#include <utility>

#include "Wire/ota_stream.h"
#include "Wire/serial_frame.h"

namespace {

constexpr size_t kLengthOffset = kavel::lidar::kSerialPrefixSize;
constexpr size_t kCommandOffset = kLengthOffset + 1;
constexpr size_t kPayloadOffset = kCommandOffset + 2;  // behind command and return code
// Its length has two bytes, and direction and number stand in front of the command.
constexpr size_t kLongPayloadOffset = kPayloadOffset + 3;
constexpr size_t kLongTail =
    kavel::lidar::kSerialChecksumSize + kavel::lidar::kSerialTerminatorSize;

}  // namespace

std::vector<DeviceRequest> SerialCodec::Collect(const uint8_t* data, size_t size) {
  stream_.Append(data, size);
  std::vector<DeviceRequest> requests;
  while (const auto frame = stream_.Next()) {
    DeviceRequest request;
    kavel::lidar::OtaRequest long_request;
    if (kavel::lidar::ParseOtaFrame(frame->bytes, &long_request)) {
      request.code = long_request.cmd;
      request.payload = std::move(long_request.payload);
      request.long_frame = true;
      request.number = long_request.number;
    } else if (!kavel::lidar::ParseSerialRequest(frame->bytes, &request.code, &request.payload)) {
      continue;
    }
    request.serial_line = true;
    request.frame = frame->bytes;
    requests.push_back(std::move(request));
  }
  return requests;
}

std::vector<uint8_t> SerialCodec::Encode(const DeviceReply& reply) const {
  if (reply.long_frame || reply.payload.size() > kavel::lidar::kSerialMaxPayload) {
    return kavel::lidar::BuildOtaFrame(
        kavel::lidar::OtaAnswer{reply.number, reply.code, reply.return_code, reply.payload});
  }
  return kavel::lidar::BuildSerialAnswer(reply.code, reply.return_code, reply.payload);
}

std::vector<uint8_t> SerialCodec::EncodeForeign(const DeviceReply& reply) const {
  std::vector<uint8_t> frame = kavel::lidar::BuildPointCloudFrame(reply.payload);
  if (frame.empty()) {
    return frame;
  }
  frame.resize(frame.size() - kavel::lidar::kPointCloudTailSize);
  ++frame[sizeof kavel::lidar::kPointCloudPrefix];
  kavel::lidar::AppendSerialTail(frame, kavel::lidar::kSerialTailFirmware);
  return frame;
}

size_t SerialCodec::HeaderSize(const std::vector<uint8_t>& frame) const {
  return kavel::lidar::IsOtaFrame(frame) ? kLongPayloadOffset : kPayloadOffset;
}

void SerialCodec::Damage(std::vector<uint8_t>* frame) const { (*frame)[kCommandOffset] ^= 0x5A; }

void SerialCodec::OverstateLength(std::vector<uint8_t>* frame) const {
  const bool long_frame = kavel::lidar::IsOtaFrame(*frame);
  frame->resize(frame->size() - (long_frame ? kLongTail : kavel::lidar::kSerialTailSize));
  (*frame)[kLengthOffset] = 0xFF;
  kavel::lidar::AppendSerialTail(
      *frame, long_frame ? kavel::lidar::kSerialTailFirmware : kavel::lidar::kSerialTailCommand);
}
