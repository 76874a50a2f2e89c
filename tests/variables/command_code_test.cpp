#include "variables/command_code.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using Bytes = std::vector<uint8_t>;

TEST(CommandCode, ReadsShortTextsWithAutomaticBase) {
  EXPECT_EQ(ParseCommandText("0x21").code, 0x21);
  EXPECT_EQ(ParseCommandText("33").code, 33);
  EXPECT_EQ(ParseCommandText("033").code, 27);
  EXPECT_EQ(ParseCommandText("300").code, 300 - 256);
  EXPECT_TRUE(ParseCommandText("0x21").prefix.empty());
}

TEST(CommandCode, LongTextsTravelAsBytesUnderOneCode) {
  for (const char* text : {"0x5A0102", "0x5a0102"}) {
    const CommandRoute route = ParseCommandText(text);
    EXPECT_EQ(route.code, 0xFF);
    EXPECT_EQ(route.prefix, (Bytes{0x5A, 0x01, 0x02}));
  }
  EXPECT_EQ(ParseCommandText("12345").prefix, (Bytes{0x12, 0x34, 0x05}));
}

TEST(CommandCode, RefusesWithFixedWords) {
  for (const char* text : {"", "x", "0x5A01G2", "12 345"}) {
    try {
      ParseCommandText(text);
      FAIL() << text;
    } catch (const std::invalid_argument& error) {
      EXPECT_STREQ(error.what(), "invalid stoi argument") << text;
    }
  }
  try {
    ParseCommandText("0x80000000");
    FAIL();
  } catch (const std::out_of_range& error) {
    EXPECT_STREQ(error.what(), "stoi argument out of range");
  }
}

}  // namespace
