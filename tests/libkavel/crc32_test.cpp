#include "CmxClient/crc32.h"

#include <gtest/gtest.h>

#include <vector>

namespace kavel::lidar {
namespace {

// The definition, bit by bit: what the sliced tables have to agree with.
uint32_t BitwiseMpeg2(const uint8_t* data, size_t size) {
  uint32_t crc = 0xFFFFFFFF;
  for (size_t i = 0; i < size; ++i) {
    crc ^= uint32_t{data[i]} << 24;
    for (int bit = 0; bit < 8; ++bit) crc = (crc << 1) ^ ((crc >> 31) * 0x04C11DB7U);
  }
  return crc;
}

uint32_t BitwiseIeee(const uint8_t* data, size_t size) {
  uint32_t crc = 0xFFFFFFFF;
  for (size_t i = 0; i < size; ++i) {
    crc ^= data[i];
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1) * 0xEDB88320U);
  }
  return ~crc;
}

TEST(Crc32, GivesThePublishedCheckValues) {
  const auto* digits = reinterpret_cast<const uint8_t*>("123456789");
  EXPECT_EQ(Crc32Mpeg2(digits, 9), 0x0376E6E7U);
  EXPECT_EQ(Crc32Ieee(digits, 9), 0xCBF43926U);
  EXPECT_EQ(Crc32Mpeg2(nullptr, 0), 0xFFFFFFFFU);
  EXPECT_EQ(Crc32Ieee(nullptr, 0), 0U);
}

TEST(Crc32, AgreesWithTheDefinitionForEveryLengthAndAlignment) {
  std::vector<uint8_t> bytes(80);
  uint32_t state = 1;
  for (auto& byte : bytes) {
    state = state * 1664525 + 1013904223;
    byte = static_cast<uint8_t>(state >> 24);
  }
  for (size_t start = 0; start < 8; ++start) {
    for (size_t size = 0; start + size <= bytes.size(); ++size) {
      const uint8_t* data = bytes.data() + start;
      ASSERT_EQ(Crc32Mpeg2(data, size), BitwiseMpeg2(data, size)) << start << "+" << size;
      ASSERT_EQ(Crc32Ieee(data, size), BitwiseIeee(data, size)) << start << "+" << size;
    }
  }
}

}  // namespace
}  // namespace kavel::lidar
