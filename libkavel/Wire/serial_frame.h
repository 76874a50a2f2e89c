#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kavel::lidar {

/// Serial command frames: prefix "$LDCMD,", length byte, command, payload, tail.
///
/// The layouts of both directions, byte by byte, are in docs/wire-formats.md ("Serial command
/// frames"). Everything here is pure and may be called on any thread; nothing throws for bad input.

inline constexpr uint8_t kSerialCommandPrefix[] = {'$', 'L', 'D', 'C', 'M', 'D', ','};
inline constexpr size_t kSerialPrefixSize = sizeof(kSerialCommandPrefix);

inline constexpr uint8_t kSerialTerminator1 = 0xEE;
inline constexpr uint8_t kSerialTerminator2 = 0xFF;

inline constexpr size_t kSerialRandomSize = 4;
inline constexpr size_t kSerialChecksumSize = 4;
inline constexpr size_t kSerialTerminatorSize = 2;
/// Random value, checksum and terminator.
inline constexpr size_t kSerialTailSize =
    kSerialRandomSize + kSerialChecksumSize + kSerialTerminatorSize;

/// Longest payload of a request: its length byte counts the command as well.
inline constexpr size_t kSerialMaxPayload = 254;
/// Longest inner part of a response: length byte 255 and the two bytes that it does not count.
inline constexpr size_t kSerialMaxInner = 257;
inline constexpr size_t kSerialMinResponse = 19;

/// Tail modes. Any other value is a tail of the terminator alone.
inline constexpr int kSerialTailCommand = 1;   ///< random value, checksum little-endian, terminator
inline constexpr int kSerialTailFirmware = 2;  ///< checksum big-endian, terminator

/// The checksum of both tails: CRC-32/MPEG-2 over `size` bytes followed by as many zero bytes as
/// make the covered length a multiple of 4.
uint32_t SerialChecksum(const uint8_t* data, size_t size);

/// Appends the tail of `mode` to a frame that begins with its 7-byte prefix. The checksum covers
/// everything from offset 7 on as it stands then, in mode 1 with the random value. The random value
/// comes from a Mersenne twister (MT19937) that is seeded once from the system's random device.
void AppendSerialTail(std::vector<uint8_t>& frame, int mode);

/// A request. The payload has at most kSerialMaxPayload bytes; a longer one gives an empty frame,
/// since the length byte could not tell the truth.
std::vector<uint8_t> BuildSerialFrame(uint8_t cmd, const std::vector<uint8_t>& payload);

/// Checks a received block and, when it is sound, leaves its inner bytes (length byte, command,
/// what follows) in `inner`. The prefix is not compared. `mode` is the tail's mode, 1 or 2.
/// Returns false, with `inner` untouched, when the block is shorter than 19 bytes, does not end
/// with the terminator, has another checksum, or its inner bytes do not number their first byte
/// + 2.
bool ParseSerialResponse(const std::vector<uint8_t>& block, std::vector<uint8_t>& inner,
                         int mode = kSerialTailCommand);

/// Device side: a response around `inner`, whose first byte is inner.size() - 2. Also mode 2
/// carries the random value there, since that is what ParseSerialResponse cuts off in both modes.
/// At most kSerialMaxInner bytes and at least 2, else the frame is empty.
std::vector<uint8_t> BuildSerialResponse(const std::vector<uint8_t>& inner,
                                         int mode = kSerialTailCommand);

/// Device side: the ordinary answer, whose inner bytes are length, command, return code and
/// payload. At most kSerialMaxPayload bytes of payload, else the frame is empty.
std::vector<uint8_t> BuildSerialAnswer(uint8_t cmd, uint8_t return_code,
                                       const std::vector<uint8_t>& payload);

/// Device side: checks a request (prefix, length byte, checksum, terminator) and hands out what it
/// asks. Returns false, with the results untouched, for any other block.
bool ParseSerialRequest(const std::vector<uint8_t>& block, uint8_t* cmd,
                        std::vector<uint8_t>* payload);

}  // namespace kavel::lidar
