#include "Wire/crc32.h"

#include <array>

#include "Wire/big_endian.h"

namespace kavel::lidar {
namespace {

constexpr uint32_t kPolynomial = 0x04C11DB7;
constexpr uint32_t kReflectedPolynomial = 0xEDB88320;
constexpr size_t kSlices = 8;

/// Table n tells what a byte contributes to the checksum once n more bytes have gone by.
using Tables = std::array<std::array<uint32_t, 256>, kSlices>;

constexpr uint32_t ShiftLeftByte(uint32_t crc) {
  for (int bit = 0; bit < 8; ++bit) {
    crc = (crc & 0x80000000U) != 0 ? (crc << 1) ^ kPolynomial : crc << 1;
  }
  return crc;
}

constexpr uint32_t ShiftRightByte(uint32_t crc) {
  for (int bit = 0; bit < 8; ++bit) {
    crc = (crc & 1U) != 0 ? (crc >> 1) ^ kReflectedPolynomial : crc >> 1;
  }
  return crc;
}

constexpr Tables MakeTables(bool reflected) {
  Tables tables{};
  for (uint32_t byte = 0; byte < 256; ++byte) {
    uint32_t crc = reflected ? byte : byte << 24;
    for (auto& table : tables) {
      crc = reflected ? ShiftRightByte(crc) : ShiftLeftByte(crc);
      table[byte] = crc;
    }
  }
  return tables;
}

constexpr Tables kMpeg2Tables = MakeTables(false);
constexpr Tables kIeeeTables = MakeTables(true);

constexpr uint8_t ByteOf(uint32_t word, int shift) { return static_cast<uint8_t>(word >> shift); }

}  // namespace

uint32_t Crc32Mpeg2(const uint8_t* data, size_t size) {
  const Tables& t = kMpeg2Tables;
  uint32_t crc = 0xFFFFFFFF;
  for (; size >= kSlices; size -= kSlices, data += kSlices) {
    const uint32_t high = crc ^ ReadBigEndian32(data);
    const uint32_t low = ReadBigEndian32(data + 4);
    crc = t[7][ByteOf(high, 24)] ^ t[6][ByteOf(high, 16)] ^ t[5][ByteOf(high, 8)] ^
          t[4][ByteOf(high, 0)] ^ t[3][ByteOf(low, 24)] ^ t[2][ByteOf(low, 16)] ^
          t[1][ByteOf(low, 8)] ^ t[0][ByteOf(low, 0)];
  }
  for (; size > 0; --size, ++data) {
    crc = (crc << 8) ^ t[0][ByteOf(crc, 24) ^ *data];
  }
  return crc;
}

uint32_t Crc32Ieee(const uint8_t* data, size_t size) {
  const Tables& t = kIeeeTables;
  uint32_t crc = 0xFFFFFFFF;
  for (; size >= kSlices; size -= kSlices, data += kSlices) {
    const uint32_t low = crc ^ ReadLittleEndian32(data);
    const uint32_t high = ReadLittleEndian32(data + 4);
    crc = t[7][ByteOf(low, 0)] ^ t[6][ByteOf(low, 8)] ^ t[5][ByteOf(low, 16)] ^
          t[4][ByteOf(low, 24)] ^ t[3][ByteOf(high, 0)] ^ t[2][ByteOf(high, 8)] ^
          t[1][ByteOf(high, 16)] ^ t[0][ByteOf(high, 24)];
  }
  for (; size > 0; --size, ++data) {
    crc = (crc >> 8) ^ t[0][ByteOf(crc, 0) ^ *data];
  }
  return ~crc;
}

}  // namespace kavel::lidar
