#include "wire/cmx_codec.h"

#include <algorithm>
#include <utility>

#include "Wire/big_endian.h"

namespace {

constexpr uint8_t kIdentifier1_0[] = {0x47, 0x74};
constexpr uint8_t kIdentifier2_0[] = {0x57, 0x75};

}  // namespace

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
  const uint8_t* identifier = version_2_ ? kIdentifier2_0 : kIdentifier1_0;
  const uint8_t* start = std::search(data, data + size, identifier, identifier + 2);
  if (start == data + size) {
    // The last byte may be the first half of an identifier.
    return data[size - 1] == identifier[0] ? size - 1 : size;
  }
  if (start != data) {
    return static_cast<size_t>(start - data);
  }

  const size_t header = HeaderSize();
  if (size < header) {
    return 0;
  }
  DeviceRequest request;
  request.code = data[version_2_ ? 3 : 2];
  const uint32_t length = kavel::lidar::ReadBigEndian32(data + header - 4);
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
  std::vector<uint8_t> frame;
  frame.reserve(HeaderSize() + reply.payload.size());
  if (version_2_) {
    frame = {kIdentifier2_0[0], kIdentifier2_0[1], 1, reply.code, reply.return_code, 0, 0, 0};
  } else {
    frame = {kIdentifier1_0[0], kIdentifier1_0[1], reply.code, reply.return_code};
  }
  kavel::lidar::AppendBigEndian32(frame, static_cast<uint32_t>(reply.payload.size()));
  frame.insert(frame.end(), reply.payload.begin(), reply.payload.end());
  return frame;
}

void CmxCodec::Damage(std::vector<uint8_t>* frame) const { (*frame)[1] ^= 0x5A; }

void CmxCodec::OverstateLength(std::vector<uint8_t>* frame) const {
  (*frame)[HeaderSize() - 4] = 0x7F;
}
