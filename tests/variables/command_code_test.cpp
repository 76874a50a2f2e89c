#include "variables/command_code.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

TEST(CommandCode, ShortTextsAreCodesAndLongOnesTravelAsBytes) {
  struct Case {
    const char* text;
    uint8_t code;
    std::vector<uint8_t> prefix;
  };
  const Case cases[] = {
      {"0x21", 0x21, {}},
      {"33", 33, {}},
      {"033", 27, {}},
      {"300", 300 - 256, {}},
      {"0x5A0102", 0xFF, {0x5A, 0x01, 0x02}},
      {"12345", 0xFF, {0x12, 0x34, 0x05}},
  };
  for (const Case& expected : cases) {
    const CommandRoute route = ParseCommandText(expected.text);
    EXPECT_EQ(route.code, expected.code) << expected.text;
    EXPECT_EQ(route.prefix, expected.prefix) << expected.text;
  }
}

TEST(CommandCode, RefusesWithFixedWords) {
  for (const char* text : {"", "x", "0x5A01G2", "12 345"}) {
    try {
      ParseCommandText(text);
      ADD_FAILURE() << text;
    } catch (const std::invalid_argument& error) {
      EXPECT_STREQ(error.what(), "invalid stoi argument") << text;
    }
  }
  try {
    ParseCommandText("0x80000000");
    ADD_FAILURE();
  } catch (const std::out_of_range& error) {
    EXPECT_STREQ(error.what(), "stoi argument out of range");
  }
}

}  // namespace
