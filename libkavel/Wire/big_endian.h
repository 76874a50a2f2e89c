#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

/// Numbers as they stand on the wire. The readers take exactly as many bytes as the width says; the
/// caller has checked that they are there.
namespace kavel::lidar {

/// The number that stands in `size` bytes. Of more than eight bytes the last eight count.
inline uint64_t ReadBigEndian(const uint8_t* bytes, size_t size) {
  uint64_t value = 0;
  for (size_t i = 0; i < size; ++i) {
    value = (value << 8) | bytes[i];
  }
  return value;
}

/// As `ReadBigEndian`, the lowest byte first; of more than eight bytes the first eight count.
inline uint64_t ReadLittleEndian(const uint8_t* bytes, size_t size) {
  uint64_t value = 0;
  while (size > 0) {
    value = (value << 8) | bytes[--size];
  }
  return value;
}

inline uint16_t ReadBigEndian16(const uint8_t* bytes) {
  return static_cast<uint16_t>((bytes[0] << 8) | bytes[1]);
}

inline uint32_t ReadBigEndian32(const uint8_t* bytes) {
  return (uint32_t{bytes[0]} << 24) | (uint32_t{bytes[1]} << 16) | (uint32_t{bytes[2]} << 8) |
         uint32_t{bytes[3]};
}

inline uint32_t ReadLittleEndian32(const uint8_t* bytes) {
  return uint32_t{bytes[0]} | (uint32_t{bytes[1]} << 8) | (uint32_t{bytes[2]} << 16) |
         (uint32_t{bytes[3]} << 24);
}

/// Appends the lowest `size` (0 to 8) bytes of `value`.
inline void AppendBigEndian(std::vector<uint8_t>& bytes, uint64_t value, size_t size) {
  while (size > 0) {
    bytes.push_back(static_cast<uint8_t>(value >> (8 * --size)));
  }
}

inline void AppendBigEndian16(std::vector<uint8_t>& bytes, uint16_t value) {
  AppendBigEndian(bytes, value, sizeof value);
}

inline void AppendBigEndian32(std::vector<uint8_t>& bytes, uint32_t value) {
  AppendBigEndian(bytes, value, sizeof value);
}

inline void AppendBigEndian64(std::vector<uint8_t>& bytes, uint64_t value) {
  AppendBigEndian(bytes, value, sizeof value);
}

inline void AppendLittleEndian32(std::vector<uint8_t>& bytes, uint32_t value) {
  for (int shift = 0; shift < 32; shift += 8) {
    bytes.push_back(static_cast<uint8_t>(value >> shift));
  }
}

inline void WriteBigEndian32(uint8_t* bytes, uint32_t value) {
  bytes[0] = static_cast<uint8_t>(value >> 24);
  bytes[1] = static_cast<uint8_t>(value >> 16);
  bytes[2] = static_cast<uint8_t>(value >> 8);
  bytes[3] = static_cast<uint8_t>(value);
}

/// `value`, read from `size` (1 to 8) bytes, as a number in two's complement.
inline int64_t SignExtended(uint64_t value, size_t size) {
  const size_t unused_bits = 64 - 8 * size;
  return static_cast<int64_t>(value << unused_bits) >> unused_bits;
}

// Reals travel as IEEE 754 numbers; their bits are numbers like any other.
static_assert(sizeof(float) == 4 && sizeof(double) == 8);

inline uint32_t BitsOf(float value) {
  uint32_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

inline uint64_t BitsOf(double value) {
  uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

inline float FloatOf(uint32_t bits) {
  float value = 0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

inline double DoubleOf(uint64_t bits) {
  double value = 0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

}  // namespace kavel::lidar
