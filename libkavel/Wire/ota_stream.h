#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace kavel::lidar {

/// Long frames on the serial line: prefix "$LDOTA,", a 16-bit big-endian length, and a tail without
/// a random value whose checksum is big-endian. They carry what the single length byte of a
/// "$LDCMD," frame cannot count. The layout is in docs/wire-formats.md ("Long frames").
///
/// Each says which way it goes, and an answer repeats the number of its request: neither an echo
/// nor an answer that comes too late can be taken for the one that is waited for. Everything here
/// is pure and may be called on any thread.

inline constexpr uint8_t kOtaPrefix[] = {'$', 'L', 'D', 'O', 'T', 'A', ','};
inline constexpr size_t kOtaPrefixSize = sizeof(kOtaPrefix);
/// Longest payload that fits a frame of either direction.
inline constexpr size_t kOtaMaxPayload = 65531;
/// Prefix, length, checksum and terminator: what the length does not count.
inline constexpr size_t kOtaUncounted = 15;
/// All of a request but its payload.
inline constexpr size_t kOtaRequestOverhead = kOtaUncounted + 3;
/// The number of a long answer to a "$LDCMD," request, which has none. Long requests have the
/// numbers from 1 to 255.
inline constexpr uint8_t kOtaUnnumbered = 0;

enum class OtaDirection : uint8_t { kRequest = 'Q', kAnswer = 'A' };

struct OtaRequest {
  uint8_t number = kOtaUnnumbered;
  uint8_t cmd = 0;
  std::vector<uint8_t> payload;
};

struct OtaAnswer {
  uint8_t number = kOtaUnnumbered;
  uint8_t cmd = 0;
  uint8_t return_code = 0;
  std::vector<uint8_t> payload;
};

/// True when the block begins with the prefix of a long frame.
bool IsOtaFrame(const std::vector<uint8_t>& block);

/// Which way a whole frame goes; none when prefix, length, direction, checksum or terminator do not
/// fit.
std::optional<OtaDirection> OtaDirectionOf(const std::vector<uint8_t>& block);

/// Empty when the payload is longer than kOtaMaxPayload.
std::vector<uint8_t> BuildOtaFrame(const OtaRequest& request);
std::vector<uint8_t> BuildOtaFrame(const OtaAnswer& answer);

/// False, with the results untouched, unless the block is a whole frame of this direction.
bool ParseOtaFrame(const std::vector<uint8_t>& block, OtaRequest* request);
bool ParseOtaFrame(const std::vector<uint8_t>& block, OtaAnswer* answer);

}  // namespace kavel::lidar
