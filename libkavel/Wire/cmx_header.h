#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// The command frame ("CMX"): a fixed header with a big-endian payload length, then the payload.
/// Requests and answers share one layout. docs/wire-formats.md shows both versions byte by byte.
namespace kavel::lidar {

/// Where the fields of one version's header stand. Byte 3 is the return code of one version and the
/// command of the other.
struct CmxHeaderLayout {
  uint8_t identifier_1;
  uint8_t identifier_2;
  uint8_t fixed_byte_2;  ///< what stands at offset 2 before the fields are written
  size_t size;
  size_t command_at;
  size_t return_code_at;
  size_t payload_length_at;
};

constexpr CmxHeaderLayout kCmxHeader1{0x47, 0x74, 0, 8, 2, 3, 4};
constexpr CmxHeaderLayout kCmxHeader2{0x57, 0x75, 1, 12, 3, 4, 8};
constexpr size_t kMaxCmxHeaderSize = 12;

/// The layout of protocol version 1 or 2; null for any other.
const CmxHeaderLayout* CmxHeaderOf(uint8_t protocol_version);

/// A whole frame: a request has the return code 0.
std::vector<uint8_t> BuildCmxFrame(const CmxHeaderLayout& layout, uint8_t cmd, uint8_t return_code,
                                   const std::vector<uint8_t>& payload);

/// Where between `begin` and `end` a header may begin: at the first pair of identifier bytes, or at
/// a last byte that may be the first half of one; `end` when nowhere.
const uint8_t* FindCmxHeader(const CmxHeaderLayout& layout, const uint8_t* begin,
                             const uint8_t* end);

}  // namespace kavel::lidar
