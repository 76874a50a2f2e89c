#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace kavel::lidar {

/// How a point-cloud packet begins that numbers itself: "KPCL", a number that counts from 0, the
/// time in microseconds. What follows is the model's own.
constexpr size_t kPointPacketHead = 16;

/// The head of a packet.
std::vector<uint8_t> BuildPointPacketHead(uint32_t number, uint64_t time_us);

/// The number of a packet; nothing for one that has none.
std::optional<uint32_t> PointPacketNumber(const uint8_t* packet, size_t size);

}  // namespace kavel::lidar
