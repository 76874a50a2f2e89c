#include "variables/host_port.h"

#include <gtest/gtest.h>

namespace {

constexpr char kNoInteger[] = "Host port must be ANY or an integer";
constexpr char kOutOfRange[] = "Host port must be in [1024, 65535]";

TEST(HostPort, AcceptsAnyAndThePortsOfUsers) {
  const std::pair<const char*, uint16_t> accepted[] = {
      {"ANY", 0},       {"any", 0},        {" \tAny\r\n", 0}, {"1024", 1024},
      {"65535", 65535}, {"\t2000 ", 2000}, {"+2000", 2000},
  };
  for (const auto& [text, expected] : accepted) {
    uint16_t port = 1;
    std::string error = "untouched";
    EXPECT_TRUE(ParseHostPort(text, &port, &error)) << text;
    EXPECT_EQ(port, expected) << text;
    EXPECT_EQ(error, "untouched") << text;
  }
}

TEST(HostPort, RefusesWithTheReason) {
  const std::pair<const char*, const char*> refused[] = {
      {"", "Host port is empty"},
      {" \t\r\n", "Host port is empty"},
      {"80x", kNoInteger},
      {"x80", kNoInteger},
      {"8 0", kNoInteger},
      {"-", kNoInteger},
      {"ANYX", kNoInteger},
      {"0x500", kNoInteger},
      {"1023", kOutOfRange},
      {"65536", kOutOfRange},
      {"0", kOutOfRange},
      {"-1", kOutOfRange},
      {"-18446744073709549616", kOutOfRange},  // 2000 modulo 2^64
      {"99999999999999999999999", kOutOfRange},
  };
  for (const auto& [text, expected] : refused) {
    uint16_t port = 7;
    std::string error;
    EXPECT_FALSE(ParseHostPort(text, &port, &error)) << text;
    EXPECT_EQ(error, expected) << text;
    EXPECT_EQ(port, 7) << text;
  }
  EXPECT_FALSE(ParseHostPort("80x", nullptr, nullptr));
  std::string error;
  EXPECT_FALSE(ParseHostPort("2000", nullptr, &error));
  EXPECT_EQ(error, "out_port is null");
}

}  // namespace
