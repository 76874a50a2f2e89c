#include "serial_codec.h"

#include <algorithm>
#include <utility>

#include "CmxClient/big_endian.h"
#include "CmxClient/ota_stream.h"
#include "CmxClient/serial_frame.h"

namespace {

using kavel::lidar::kOtaPrefix;
using kavel::lidar::kSerialCommandPrefix;

constexpr size_t kPrefixSize = kavel::lidar::kSerialPrefixSize;
constexpr size_t kCommandOffset = kPrefixSize + 1;
// Around what the length counts: prefix, the length itself and the tail.
constexpr size_t kShortAround = kPrefixSize + 1 + kavel::lidar::kSerialTailSize;
constexpr size_t kLongTail =
    kavel::lidar::kSerialChecksumSize + kavel::lidar::kSerialTerminatorSize;
constexpr size_t kLongAround = kPrefixSize + 2 + kLongTail;

bool StartsLike(const uint8_t* data, size_t size, const uint8_t* prefix) {
  return std::equal(data, data + std::min(size, kPrefixSize), prefix);
}

}  // namespace

size_t SerialCodec::Take(const uint8_t* data, size_t size, std::vector<DeviceRequest>* requests) {
  const bool long_frame = StartsLike(data, size, kOtaPrefix);
  if (!long_frame && !StartsLike(data, size, kSerialCommandPrefix)) {
    return static_cast<size_t>(std::find(data + 1, data + size, '$') - data);
  }
  if (size < kPrefixSize + 2) return 0;
  const size_t counted =
      long_frame ? kavel::lidar::ReadBigEndian16(data + kPrefixSize) : data[kPrefixSize];
  const size_t whole = counted + (long_frame ? kLongAround : kShortAround);
  if (size < whole) return 0;

  const std::vector<uint8_t> block(data, data + whole);
  DeviceRequest request;
  request.long_frame = long_frame;
  const bool sound = long_frame
                         ? kavel::lidar::ParseOtaFrame(block, &request.code, &request.payload)
                         : kavel::lidar::ParseSerialRequest(block, &request.code, &request.payload);
  // A length hit by noise may reach into the next frame: only the prefix is done with.
  if (!sound) return kPrefixSize;
  requests->push_back(std::move(request));
  return whole;
}

std::vector<uint8_t> SerialCodec::Encode(const DeviceReply& reply) const {
  if (reply.long_frame || reply.payload.size() > kavel::lidar::kSerialMaxPayload) {
    return kavel::lidar::BuildOtaResponse(reply.code, reply.return_code, reply.payload);
  }
  std::vector<uint8_t> inner = {static_cast<uint8_t>(reply.payload.size() + 1), reply.code,
                                reply.return_code};
  inner.insert(inner.end(), reply.payload.begin(), reply.payload.end());
  return kavel::lidar::BuildSerialResponse(inner);
}

void SerialCodec::Damage(std::vector<uint8_t>* frame) const { (*frame)[kCommandOffset] ^= 0x5A; }

void SerialCodec::OverstateLength(std::vector<uint8_t>* frame) const {
  const bool long_frame = StartsLike(frame->data(), frame->size(), kOtaPrefix);
  frame->resize(frame->size() - (long_frame ? kLongTail : kavel::lidar::kSerialTailSize));
  (*frame)[kPrefixSize] = 0xFF;
  kavel::lidar::AppendSerialTail(
      *frame, long_frame ? kavel::lidar::kSerialTailFirmware : kavel::lidar::kSerialTailCommand);
}
