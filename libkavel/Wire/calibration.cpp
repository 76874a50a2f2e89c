#include "Wire/calibration.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "Wire/big_endian.h"
#include "Wire/crc32.h"

namespace kavel::lidar {
namespace {

constexpr uint8_t kMagic[] = {'L', 'C', 'A', 'L'};
constexpr uint8_t kVersion = 1;
constexpr size_t kHeadSize = 6;
constexpr size_t kChannelSize = 4;
constexpr size_t kChecksumSize = 4;

}  // namespace

std::vector<uint8_t> BuildCalibration(const std::vector<ChannelAngles>& channels) {
  std::vector<uint8_t> bytes(std::begin(kMagic), std::end(kMagic));
  bytes.push_back(kVersion);
  bytes.push_back(static_cast<uint8_t>(channels.size()));
  for (const ChannelAngles& channel : channels) {
    AppendBigEndian16(bytes, static_cast<uint16_t>(channel.elevation_cdeg));
    AppendBigEndian16(bytes, static_cast<uint16_t>(channel.azimuth_cdeg));
  }
  AppendBigEndian32(bytes, Crc32Mpeg2(bytes.data(), bytes.size()));
  return bytes;
}

bool IsCalibration(const std::vector<uint8_t>& bytes) {
  if (bytes.size() < kHeadSize + kChecksumSize ||
      !std::equal(std::begin(kMagic), std::end(kMagic), bytes.begin()) ||
      bytes[sizeof kMagic] != kVersion) {
    return false;
  }
  const size_t summed = kHeadSize + bytes[kHeadSize - 1] * kChannelSize;
  return bytes.size() == summed + kChecksumSize &&
         ReadBigEndian32(bytes.data() + summed) == Crc32Mpeg2(bytes.data(), summed);
}

}  // namespace kavel::lidar
