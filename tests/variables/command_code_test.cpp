#include "variables/command_code.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/bytes.h"

namespace {

TEST(CommandCode, ShortTextsAreCodesAndLongOnesTravelAsBytes) {
  const std::pair<const char*, uint8_t> codes[] = {
      {"0x21", 0x21}, {"33", 33}, {"033", 27}, {"300", 300 - 256}, {"0x5A0102", 0xFF}};
  for (const auto& [text, code] : codes) {
    EXPECT_EQ(WireCommandOf(text).code, code) << text;
  }
  EXPECT_EQ(WireCommandOf("0x21").payload, Bytes());
  EXPECT_EQ(WireCommandOf("0x5a0102").payload, (Bytes{0x5A, 0x01, 0x02}));
  EXPECT_EQ(WireCommandOf("12345", {7}).payload, (Bytes{0x12, 0x34, 0x05, 7}));
  EXPECT_TRUE(IsCommand("34", 0x22) && IsCommand("0X22", 0x22));
  EXPECT_FALSE(IsCommand("0x000022", 0x22) || IsCommand("x", 0) || IsCommand("", 0));
}

TEST(CommandCode, RefusesWithFixedWords) {
  const std::pair<const char*, const char*> refused[] = {
      {"", "invalid stoi argument"},
      {"x", "invalid stoi argument"},
      {"0x5A01G2", "invalid stoi argument"},
      {"0x80000000", "stoi argument out of range"},
  };
  for (const auto& [text, message] : refused) {
    try {
      WireCommandOf(text);
      ADD_FAILURE() << text;
    } catch (const std::logic_error& error) {
      EXPECT_STREQ(error.what(), message) << text;
    }
  }
}

}  // namespace
