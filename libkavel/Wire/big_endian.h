#pragma once

#include <cstdint>
#include <vector>

/// Numbers as they stand on the wire. The readers take exactly as many bytes as the width says; the
/// caller has checked that they are there.
namespace kavel::lidar {

inline void AppendBigEndian16(std::vector<uint8_t>& bytes, uint16_t value) {
  bytes.push_back(static_cast<uint8_t>(value >> 8));
  bytes.push_back(static_cast<uint8_t>(value));
}

inline void AppendBigEndian32(std::vector<uint8_t>& bytes, uint32_t value) {
  AppendBigEndian16(bytes, static_cast<uint16_t>(value >> 16));
  AppendBigEndian16(bytes, static_cast<uint16_t>(value));
}

inline void AppendBigEndian64(std::vector<uint8_t>& bytes, uint64_t value) {
  AppendBigEndian32(bytes, static_cast<uint32_t>(value >> 32));
  AppendBigEndian32(bytes, static_cast<uint32_t>(value));
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

inline uint16_t ReadBigEndian16(const uint8_t* bytes) {
  return static_cast<uint16_t>((bytes[0] << 8) | bytes[1]);
}

inline uint32_t ReadBigEndian32(const uint8_t* bytes) {
  return (uint32_t{bytes[0]} << 24) | (uint32_t{bytes[1]} << 16) | (uint32_t{bytes[2]} << 8) |
         uint32_t{bytes[3]};
}

inline uint64_t ReadBigEndian64(const uint8_t* bytes) {
  return (uint64_t{ReadBigEndian32(bytes)} << 32) | ReadBigEndian32(bytes + 4);
}

inline uint32_t ReadLittleEndian32(const uint8_t* bytes) {
  return uint32_t{bytes[0]} | (uint32_t{bytes[1]} << 8) | (uint32_t{bytes[2]} << 16) |
         (uint32_t{bytes[3]} << 24);
}

}  // namespace kavel::lidar
