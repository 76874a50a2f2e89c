#include "wire/cmx_codec.h"

#include <utility>

#include "Wire/big_endian.h"

std::vector<DeviceRequest> CmxCodec::Collect(const uint8_t* data, size_t size) {
  waiting_.insert(waiting_.end(), data, data + size);
  std::vector<DeviceRequest> requests;
  size_t done = 0;
  while (done < waiting_.size()) {
    const size_t taken = Take(waiting_.data() + done, waiting_.size() - done, &requests);
    if (taken == 0) {
      break;
    }
    done += taken;
  }
  waiting_.erase(waiting_.begin(), waiting_.begin() + static_cast<std::ptrdiff_t>(done));
  return requests;
}

size_t CmxCodec::Take(const uint8_t* data, size_t size,
                      std::vector<DeviceRequest>* requests) const {
  const uint8_t* start = kavel::lidar::FindCmxHeader(layout_, data, data + size);
  if (start != data) {
    return static_cast<size_t>(start - data);
  }
  const size_t header = layout_.size;
  if (size < header) {
    return 0;
  }
  DeviceRequest request;
  request.code = data[layout_.command_at];
  const uint32_t length = kavel::lidar::ReadBigEndian32(data + layout_.payload_length_at);
  if (length > kMaxRequestPayload) {
    request.oversized = true;
    requests->push_back(std::move(request));
    return header;
  }
  if (size < header + length) {
    return 0;
  }
  request.payload.assign(data + header, data + header + length);
  request.frame.assign(data, data + header + length);
  requests->push_back(std::move(request));
  return header + length;
}

std::vector<uint8_t> CmxCodec::Encode(const DeviceReply& reply) const {
  return kavel::lidar::BuildCmxFrame(layout_, reply.code, reply.return_code, reply.payload);
}

std::vector<uint8_t> CmxCodec::EncodeForeign(const DeviceReply& reply) const {
  const bool is_first = layout_.identifier_1 == kavel::lidar::kCmxHeader1.identifier_1;
  return kavel::lidar::BuildCmxFrame(
      is_first ? kavel::lidar::kCmxHeader2 : kavel::lidar::kCmxHeader1, reply.code,
      reply.return_code, reply.payload);
}

void CmxCodec::Damage(std::vector<uint8_t>* frame) const { (*frame)[1] ^= 0x5A; }

void CmxCodec::OverstateLength(std::vector<uint8_t>* frame) const {
  (*frame)[layout_.payload_length_at] = 0x7F;
}
