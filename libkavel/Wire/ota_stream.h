#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kavel::lidar {

/// Long frames on the serial line: prefix "$LDOTA,", a 16-bit big-endian length, and a tail without
/// a random value whose checksum is big-endian. They carry what the single length byte of a
/// "$LDCMD," frame cannot count. The layout is in docs/wire-formats.md ("Long frames").
///
/// The length counts everything between itself and the checksum: the command, in a response the
/// return code, the payload. Everything here is pure and may be called on any thread.

inline constexpr uint8_t kOtaPrefix[] = {'$', 'L', 'D', 'O', 'T', 'A', ','};
inline constexpr size_t kOtaPrefixSize = sizeof(kOtaPrefix);
/// Longest payload that fits a frame of either direction.
inline constexpr size_t kOtaMaxPayload = 65533;
/// Prefix, length, checksum and terminator: what the length does not count.
inline constexpr size_t kOtaUncounted = 15;

/// True when the block begins with the prefix of a long frame.
bool IsOtaFrame(const std::vector<uint8_t>& block);

/// A request; empty when the payload is longer than kOtaMaxPayload.
std::vector<uint8_t> BuildOtaFrame(uint8_t cmd, const std::vector<uint8_t>& payload);

/// Device side: reads a request. False, with the results untouched, when prefix, length, checksum
/// or terminator do not fit.
bool ParseOtaFrame(const std::vector<uint8_t>& block, uint8_t* cmd, std::vector<uint8_t>* payload);

/// Device side: a response; empty when the payload is longer than kOtaMaxPayload.
std::vector<uint8_t> BuildOtaResponse(uint8_t cmd, uint8_t return_code,
                                      const std::vector<uint8_t>& payload);

/// Reads a response. False, with the results untouched, when prefix, length, checksum or terminator
/// do not fit.
bool ParseOtaResponse(const std::vector<uint8_t>& block, uint8_t* cmd, uint8_t* return_code,
                      std::vector<uint8_t>* payload);

}  // namespace kavel::lidar
