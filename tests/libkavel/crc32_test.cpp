#include "CmxClient/crc32.h"

#include <gtest/gtest.h>

namespace kavel::lidar {
namespace {

TEST(Crc32, GivesThePublishedCheckValues) {
  const auto* digits = reinterpret_cast<const uint8_t*>("123456789");
  EXPECT_EQ(Crc32Mpeg2(digits, 9), 0x0376E6E7U);
  EXPECT_EQ(Crc32Ieee(digits, 9), 0xCBF43926U);
}

TEST(Crc32, AgreesWithTheDefinitionAroundTheEightBytesOfAStep) {
  // Worked out bit by bit, away from the code under test.
  const struct {
    size_t size;
    uint32_t mpeg2, ieee;
  } cases[] = {
      {0, 0xFFFFFFFF, 0x00000000},  {1, 0x654374D5, 0x45D03605},  {7, 0x03A400A3, 0xEF6F3B31},
      {8, 0x95CD25D3, 0x648BAD8B},  {15, 0x0915D118, 0x53605EE3}, {16, 0xF9ACC82D, 0x24E8A988},
      {31, 0x14B86007, 0x4745364C}, {64, 0xA7BF0AB7, 0xFFBAE609},
  };
  std::vector<uint8_t> bytes;
  for (const auto& each : cases) {
    while (bytes.size() < each.size) {
      bytes.push_back(static_cast<uint8_t>(bytes.size() * 37 + 11));
    }
    EXPECT_EQ(Crc32Mpeg2(bytes.data(), each.size), each.mpeg2) << each.size;
    EXPECT_EQ(Crc32Ieee(bytes.data(), each.size), each.ieee) << each.size;
  }
}

}  // namespace
}  // namespace kavel::lidar
