#include "Wire/serial_frame.h"

#include <algorithm>
#include <mutex>
#include <random>

#include "Wire/big_endian.h"
#include "Wire/crc32.h"

namespace kavel::lidar {
namespace {

uint32_t DrawRandom() {
  static std::mutex mutex;
  static std::mt19937 generator{std::random_device{}()};
  const std::lock_guard<std::mutex> lock(mutex);
  return static_cast<uint32_t>(generator());
}

void AppendTerminator(std::vector<uint8_t>& frame) {
  frame.push_back(kSerialTerminator1);
  frame.push_back(kSerialTerminator2);
}

bool EndsWithTerminator(const std::vector<uint8_t>& block) {
  return block[block.size() - 2] == kSerialTerminator1 &&
         block[block.size() - 1] == kSerialTerminator2;
}

std::vector<uint8_t> BeginFrame() {
  return {std::begin(kSerialCommandPrefix), std::end(kSerialCommandPrefix)};
}

// The prefix, the checksum and the terminator are all that the checksum leaves out, in both modes.
bool ChecksumFits(const std::vector<uint8_t>& block, int mode) {
  const size_t covered =
      block.size() - kSerialPrefixSize - kSerialChecksumSize - kSerialTerminatorSize;
  const uint8_t* stored = block.data() + kSerialPrefixSize + covered;
  const uint32_t expected =
      mode == kSerialTailFirmware ? ReadBigEndian32(stored) : ReadLittleEndian32(stored);
  return SerialChecksum(block.data() + kSerialPrefixSize, covered) == expected;
}

}  // namespace

uint32_t SerialChecksum(const uint8_t* data, size_t size) {
  const size_t padded = (size + 3) / 4 * 4;
  if (padded == size) {
    return Crc32Mpeg2(data, size);
  }
  std::vector<uint8_t> covered(data, data + size);
  covered.resize(padded);
  return Crc32Mpeg2(covered.data(), covered.size());
}

void AppendSerialTail(std::vector<uint8_t>& frame, int mode) {
  if (mode == kSerialTailCommand) {
    AppendLittleEndian32(frame, DrawRandom());
  }
  const size_t begin = std::min(kSerialPrefixSize, frame.size());
  const uint32_t checksum = SerialChecksum(frame.data() + begin, frame.size() - begin);
  if (mode == kSerialTailCommand) {
    AppendLittleEndian32(frame, checksum);
  }
  if (mode == kSerialTailFirmware) {
    AppendBigEndian32(frame, checksum);
  }
  AppendTerminator(frame);
}

std::vector<uint8_t> BuildSerialFrame(uint8_t cmd, const std::vector<uint8_t>& payload) {
  if (payload.size() > kSerialMaxPayload) {
    return {};
  }
  std::vector<uint8_t> frame = BeginFrame();
  frame.reserve(frame.size() + 2 + payload.size() + kSerialTailSize);
  frame.push_back(static_cast<uint8_t>(payload.size() + 1));
  frame.push_back(cmd);
  frame.insert(frame.end(), payload.begin(), payload.end());
  AppendSerialTail(frame, kSerialTailCommand);
  return frame;
}

bool ParseSerialResponse(const std::vector<uint8_t>& block, std::vector<uint8_t>& inner, int mode) {
  if (block.size() < kSerialMinResponse) {
    return false;
  }
  if (!EndsWithTerminator(block)) {
    return false;
  }
  if (!ChecksumFits(block, mode)) {
    return false;
  }
  const size_t inner_size = block.size() - kSerialPrefixSize - kSerialTailSize;
  if (inner_size != static_cast<size_t>(block[kSerialPrefixSize]) + 2) {
    return false;
  }
  const auto begin = block.begin() + kSerialPrefixSize;
  inner.assign(begin, begin + static_cast<std::ptrdiff_t>(inner_size));
  return true;
}

std::vector<uint8_t> BuildSerialResponse(const std::vector<uint8_t>& inner, int mode) {
  if (inner.size() < 2 || inner.size() > kSerialMaxInner) {
    return {};
  }
  std::vector<uint8_t> frame = BeginFrame();
  frame.reserve(frame.size() + inner.size() + kSerialTailSize);
  frame.insert(frame.end(), inner.begin(), inner.end());
  if (mode == kSerialTailFirmware) {
    AppendLittleEndian32(frame, DrawRandom());
  }
  AppendSerialTail(frame, mode);
  return frame;
}

std::vector<uint8_t> BuildSerialAnswer(uint8_t cmd, uint8_t return_code,
                                       const std::vector<uint8_t>& payload) {
  if (payload.size() > kSerialMaxPayload) {
    return {};
  }
  std::vector<uint8_t> inner;
  inner.reserve(3 + payload.size());
  inner.push_back(static_cast<uint8_t>(1 + payload.size()));
  inner.push_back(cmd);
  inner.push_back(return_code);
  inner.insert(inner.end(), payload.begin(), payload.end());
  return BuildSerialResponse(inner);
}

bool ParseSerialRequest(const std::vector<uint8_t>& block, uint8_t* cmd,
                        std::vector<uint8_t>* payload) {
  if (block.size() < kSerialMinResponse) {
    return false;
  }
  if (!std::equal(std::begin(kSerialCommandPrefix), std::end(kSerialCommandPrefix),
                  block.begin())) {
    return false;
  }
  // The length byte counts the command and the payload, one byte more than it counts in a response.
  const size_t counted = block[kSerialPrefixSize];
  if (block.size() != kSerialPrefixSize + 1 + counted + kSerialTailSize) {
    return false;
  }
  if (!EndsWithTerminator(block) || !ChecksumFits(block, kSerialTailCommand)) {
    return false;
  }
  const auto begin = block.begin() + kSerialPrefixSize + 1;
  *cmd = *begin;
  payload->assign(begin + 1, begin + static_cast<std::ptrdiff_t>(counted));
  return true;
}

}  // namespace kavel::lidar
