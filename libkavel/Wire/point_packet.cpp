#include "Wire/point_packet.h"

#include <cstring>
#include <iterator>

#include "Wire/big_endian.h"

namespace kavel::lidar {

namespace {

constexpr uint8_t kMagic[] = {'K', 'P', 'C', 'L'};

}  // namespace

std::vector<uint8_t> BuildPointPacketHead(uint32_t number, uint64_t time_us) {
  std::vector<uint8_t> head(std::begin(kMagic), std::end(kMagic));
  AppendBigEndian32(head, number);
  AppendBigEndian64(head, time_us);
  return head;
}

std::optional<uint32_t> PointPacketNumber(const uint8_t* packet, size_t size) {
  if (size < kPointPacketHead || std::memcmp(packet, kMagic, sizeof kMagic) != 0) {
    return std::nullopt;
  }
  return ReadBigEndian32(packet + sizeof kMagic);
}

}  // namespace kavel::lidar
