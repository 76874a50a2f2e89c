#include "Wire/ota_stream.h"

#include <algorithm>

#include "Wire/big_endian.h"
#include "Wire/serial_frame.h"

namespace kavel::lidar {
namespace {

constexpr size_t kCountedOffset = kOtaPrefixSize + 2;

std::vector<uint8_t> BeginFrame(size_t counted) {
  std::vector<uint8_t> frame(std::begin(kOtaPrefix), std::end(kOtaPrefix));
  frame.reserve(counted + kOtaUncounted);
  AppendBigEndian16(frame, static_cast<uint16_t>(counted));
  return frame;
}

void CloseFrame(std::vector<uint8_t>& frame, const std::vector<uint8_t>& payload) {
  frame.insert(frame.end(), payload.begin(), payload.end());
  AppendSerialTail(frame, kSerialTailFirmware);
}

// Checks everything around the counted bytes and returns how many of these there are; 0 when
// anything does not fit.
size_t CheckedCount(const std::vector<uint8_t>& block) {
  if (block.size() <= kOtaUncounted || !IsOtaFrame(block)) {
    return 0;
  }
  const size_t counted = ReadBigEndian16(block.data() + kOtaPrefixSize);
  if (block.size() != counted + kOtaUncounted) {
    return 0;
  }
  const uint8_t* checksum = block.data() + kCountedOffset + counted;
  if (checksum[4] != kSerialTerminator1 || checksum[5] != kSerialTerminator2) {
    return 0;
  }
  const uint32_t expected = SerialChecksum(block.data() + kOtaPrefixSize, counted + 2);
  return ReadBigEndian32(checksum) == expected ? counted : 0;
}

void CopyPayload(const std::vector<uint8_t>& block, size_t from, size_t count,
                 std::vector<uint8_t>* payload) {
  const auto begin = block.begin() + static_cast<std::ptrdiff_t>(from);
  payload->assign(begin, begin + static_cast<std::ptrdiff_t>(count));
}

}  // namespace

bool IsOtaFrame(const std::vector<uint8_t>& block) {
  return block.size() >= kOtaPrefixSize &&
         std::equal(std::begin(kOtaPrefix), std::end(kOtaPrefix), block.begin());
}

std::vector<uint8_t> BuildOtaFrame(uint8_t cmd, const std::vector<uint8_t>& payload) {
  if (payload.size() > kOtaMaxPayload) {
    return {};
  }
  std::vector<uint8_t> frame = BeginFrame(payload.size() + 1);
  frame.push_back(cmd);
  CloseFrame(frame, payload);
  return frame;
}

bool ParseOtaFrame(const std::vector<uint8_t>& block, uint8_t* cmd, std::vector<uint8_t>* payload) {
  const size_t counted = CheckedCount(block);
  if (counted < 1) {
    return false;
  }
  *cmd = block[kCountedOffset];
  CopyPayload(block, kCountedOffset + 1, counted - 1, payload);
  return true;
}

std::vector<uint8_t> BuildOtaResponse(uint8_t cmd, uint8_t return_code,
                                      const std::vector<uint8_t>& payload) {
  if (payload.size() > kOtaMaxPayload) {
    return {};
  }
  std::vector<uint8_t> frame = BeginFrame(payload.size() + 2);
  frame.push_back(cmd);
  frame.push_back(return_code);
  CloseFrame(frame, payload);
  return frame;
}

bool ParseOtaResponse(const std::vector<uint8_t>& block, uint8_t* cmd, uint8_t* return_code,
                      std::vector<uint8_t>* payload) {
  const size_t counted = CheckedCount(block);
  if (counted < 2) {
    return false;
  }
  *cmd = block[kCountedOffset];
  *return_code = block[kCountedOffset + 1];
  CopyPayload(block, kCountedOffset + 2, counted - 2, payload);
  return true;
}

}  // namespace kavel::lidar
