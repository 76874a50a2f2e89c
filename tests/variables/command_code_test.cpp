#include "variables/command_code.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/bytes.h"

namespace {

// What goes out: the code and the payload. Or the words of the refusal.
std::pair<Bytes, std::string> Travels(const std::string& text) {
  try {
    const WireCommand command = WireCommandOf(text, {7});
    return {Bytes{command.code} + command.payload, ""};
  } catch (const std::logic_error& error) {
    return {{}, error.what()};
  }
}

TEST(CommandCode, ShortTextsAreCodesAndLongOnesTravelAsBytes) {
  const std::tuple<const char*, Bytes, const char*> cases[] = {
      {"0x21", {0x21, 7}, ""},
      {"33", {33, 7}, ""},
      {"033", {27, 7}, ""},
      {"300", {300 - 256, 7}, ""},
      {"0x5a0102", {0xFF, 0x5A, 0x01, 0x02, 7}, ""},
      {"12345", {0xFF, 0x12, 0x34, 0x05, 7}, ""},
      {"", {}, "invalid stoi argument"},
      {"x", {}, "invalid stoi argument"},
      {"0x5A01G2", {}, "invalid stoi argument"},
      {"0x80000000", {}, "stoi argument out of range"},
  };
  for (const auto& [text, bytes, refusal] : cases) {
    EXPECT_EQ(Travels(text), std::pair(bytes, std::string(refusal))) << text;
  }
  EXPECT_TRUE(IsCommand("34", 0x22) && IsCommand("0X22", 0x22));
  EXPECT_FALSE(IsCommand("0x000022", 0x22) || IsCommand("x", 0) || IsCommand("", 0));
  EXPECT_EQ(CommandKey("34"), CommandKey("0X22"));
  EXPECT_NE(CommandKey("x"), CommandKey("120"));
}

}  // namespace
