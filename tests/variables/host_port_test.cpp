#include "variables/host_port.h"

#include <gtest/gtest.h>

namespace {

// The port as a text, or the reason why there is none.
std::string Parse(const std::string& text) {
  uint16_t port = 7;
  std::string error;
  if (ParseHostPort(text, &port, &error)) {
    EXPECT_EQ(error, "") << text;
    return std::to_string(port);
  }
  EXPECT_EQ(port, 7) << text;
  return error;
}

TEST(HostPort, IsAnyOrAPortOfUsers) {
  for (const char* text : {"ANY", "any", " \tAny\r\n"}) {
    EXPECT_EQ(Parse(text), "0");
  }
  EXPECT_EQ(Parse("1024"), "1024");
  EXPECT_EQ(Parse("65535"), "65535");
  EXPECT_EQ(Parse("\t2000 "), "2000");
  for (const char* text : {"", " \t\r\n"}) {
    EXPECT_EQ(Parse(text), "Host port is empty");
  }
  for (const char* text : {"80x", "x80", "8 0", "-", "ANYX", "0x500"}) {
    EXPECT_EQ(Parse(text), "Host port must be ANY or an integer");
  }
  const char* const two_thousand_modulo_2_to_64 = "-18446744073709549616";
  for (const char* text :
       {"1023", "65536", "0", "-1", two_thousand_modulo_2_to_64, "99999999999999999999999"}) {
    EXPECT_EQ(Parse(text), "Host port must be in [1024, 65535]");
  }
  std::string error;
  EXPECT_FALSE(ParseHostPort("2000", nullptr, &error));
  EXPECT_EQ(error, "out_port is null");
  EXPECT_FALSE(ParseHostPort("80x", nullptr, nullptr));
}

}  // namespace
