#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "CmxClient/command_sender.h"

/// The field-of-view table: ten angles in degrees, 0 to 360; entries 2i and 2i+1 are the limits of
/// pair i. docs/wire-formats.md has the payload.
namespace kavel::lidar {

constexpr uint8_t kFovCommand = 0x22;
constexpr uint8_t kFovPairs = 5;
constexpr size_t kFovPayloadSize = 42;  ///< mode, count, ten floats

/// The payload of the table. `count` is the number of pairs (5), `mode` the device's mode byte.
std::vector<uint8_t> BuildFovTable(const std::array<float, 10>& degrees, uint8_t count,
                                   uint8_t mode);

/// Writes the table to the lidar. `count` is the number of pairs (5), `mode` the device's mode
/// byte, passed through. Returns and sets `*error` (may be null) as `CommandSender::QueryCommand`
/// does.
int32_t SendFovTable(CommandSender& sender, const std::array<float, 10>& degrees, uint8_t count,
                     uint8_t mode, int32_t* error);

/// Reads a payload of that layout. False, with nothing written, unless it has exactly
/// `kFovPayloadSize` bytes and counts five pairs.
bool ParseFovTable(const std::vector<uint8_t>& payload, std::array<float, 10>* degrees,
                   uint8_t* mode);

/// Whether a lidar takes this payload as its table: one of that layout, all its angles from 0 to
/// 360 degrees.
bool IsValidFovTable(const std::vector<uint8_t>& payload);

}  // namespace kavel::lidar
