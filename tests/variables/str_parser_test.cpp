#include "variables/str_parser.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using Bytes = std::vector<uint8_t>;

Bytes Encode(const std::string& type, const std::string& text, float coefficient = 1.0F) {
  return CreateStrParser(type)->Parse(text, coefficient);
}

std::string Refusal(const std::string& type, const std::string& text, float coefficient = 1.0F) {
  try {
    Encode(type, text, coefficient);
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "accepted";
}

struct Encoding {
  std::string type;
  std::string text;
  float coefficient;
  Bytes bytes;
};

TEST(StrParser, EncodesMostSignificantByteFirst) {
  const Encoding encodings[] = {
      {"int8", "127", 1, {0x7F}},
      {"int8", "-128", 1, {0x80}},
      {"int16", "-2", 1, {0xFF, 0xFE}},
      {"int16", "2.5", 0.1F, {0x00, 0x19}},
      {"int16", "-1.9", 1, {0xFF, 0xFF}},
      {"int32", "-16777216", 1, {0xFF, 0x00, 0x00, 0x00}},
      {"int64", "-2", 1, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE}},
      {"uint8", "255", 1, {0xFF}},
      {"uint8", " 7 ", 1, {0x07}},
      {"uint8", "1e2", 1, {0x64}},
      {"uint16", "65535", 1, {0xFF, 0xFF}},
      {"uint32", "0", 1, {0x00, 0x00, 0x00, 0x00}},
      {"uint64", "0.9", 1, {0, 0, 0, 0, 0, 0, 0, 0}},
      {"float32", "1", 1, {0x3F, 0x80, 0x00, 0x00}},
      {"float32", "-0.5", 0.25F, {0xC0, 0x00, 0x00, 0x00}},
      {"float32", "inf", 1, {0x7F, 0x80, 0x00, 0x00}},
      {"double", "1", 1, {0x3F, 0xF0, 0, 0, 0, 0, 0, 0}},
      {"double", "0.1", 1, {0x3F, 0xB9, 0x99, 0x99, 0x99, 0x99, 0x99, 0x9A}},
      {"IP", "192.168.1.201", 1, {0xC0, 0xA8, 0x01, 0xC9}},
      {"MAC", "00:1a:2B:ff:00:01", 1, {0x00, 0x1A, 0x2B, 0xFF, 0x00, 0x01}},
  };
  for (const Encoding& encoding : encodings) {
    SCOPED_TRACE(encoding.type + " " + encoding.text);
    EXPECT_EQ(Encode(encoding.type, encoding.text, encoding.coefficient), encoding.bytes);
  }
}

TEST(StrParser, IntegersKeepTwentyFourBits) {
  EXPECT_EQ(Encode("int32", "16777217"), (Bytes{0x01, 0x00, 0x00, 0x00}));
  // The upper bound is a single-precision number too, and one more than the type holds.
  EXPECT_EQ(Encode("int32", "2147483647"), (Bytes{0x80, 0x00, 0x00, 0x00}));
  EXPECT_EQ(Encode("int64", "9223372036854775807"), (Bytes{0x80, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(StrParser, UnsignedValuesOfFourAndEightBytesTakeOnlyZero) {
  for (const char* type : {"uint32", "uint64"}) {
    EXPECT_EQ(Refusal(type, "1"), "UintParser: contains an illegal number, error:1");
    EXPECT_EQ(Refusal(type, "4294967295"),
              "UintParser: contains an illegal number, error:4294967295");
    EXPECT_EQ(Refusal(type, "0.5", 0.1F), "UintParser: contains an illegal number, error:0.5");
  }
}

TEST(StrParser, RefusesWithTheWordsThatTheUserSees) {
  const std::string refusals[][3] = {
      {"int8", "128", "IntParser: contains an illegal number, error:128"},
      {"int8", "-129", "IntParser: contains an illegal number, error:-129"},
      {"int16", "abc", "IntParser: contains an illegal number, error:abc"},
      {"int16", "0x10", "IntParser: contains an illegal number, error:0x10"},
      {"int16", "12 V", "IntParser: contains an illegal number, error:12 V"},
      {"int16", "1,5", "IntParser: contains an illegal number, error:1,5"},
      {"int16", "nan", "IntParser: contains an illegal number, error:nan"},
      {"int32", "1e40", "IntParser: contains an illegal number, error:1e40"},
      {"int32", "1e-40", "IntParser: stof() failed, error:stof argument out of range"},
      {"int32", "\u00A07", "IntParser: stof() failed, error:invalid stof argument"},
      {"uint8", "", "UintParser: contains an illegal number, error:"},
      {"uint8", "256", "UintParser: contains an illegal number, error:256"},
      {"uint16", "65536", "UintParser: contains an illegal number, error:65536"},
      {"uint16", "-1", "UintParser: contains an illegal number, error:-1"},
      {"uint16", "nan", "UintParser: contains an illegal number, error:nan"},
      {"uint16", "1e-40", "UintParser: stof() failed, error:stof argument out of range"},
      {"uint16", "\u00A07", "UintParser: stof() failed, error:invalid stof argument"},
      {"float32", "abc", "FloatParser: contains an illegal number, error:abc"},
      {"float32", "1e-40", "FloatParser: stof() out of range, error:stof argument out of range"},
      {"float32", "\u00A07", "FloatParser: stof() failed, error:invalid stof argument"},
      {"double", "abc", "DoubleParser: contains an illegal number, error:abc"},
      {"double", "\u00A07", "DoubleParser: stod() failed, error:invalid stod argument"},
      {"IP", "192.168.1", "IPv4Parser: ip address, wrong format."},
      {"IP", "1.2.3.4.5", "IPv4Parser: ip address, wrong format."},
      {"IP", "1.2.3.256", "IPv4Parser: contains an illegal number"},
      {"IP", "1.2.-3.4", "IPv4Parser: contains an illegal number"},
      {"IP", "1..2.3", "IPv4Parser: contains an illegal number"},
      {"MAC", "00:1a:2B:ff:00", "MacParser: ip address, wrong format."},
      {"MAC", "00:1a:2B:ff:00:100", "MacParser: contains an illegal number"},
      {"MAC", "00:1a:2B:ff:00:-1", "MacParser: contains an illegal number"},
      {"MAC", "00:1a::ff:00:01", "MacParser: contains an illegal number"},
  };
  for (const auto& [type, text, message] : refusals) {
    EXPECT_EQ(Refusal(type, text), message) << type << " " << text;
  }
}

TEST(StrParser, RefusesACoefficientOfZero) {
  EXPECT_EQ(Refusal("uint8", "1", 0.0F), "UintParser: contains an illegal number, error:1");
  EXPECT_EQ(Refusal("int64", "0", 0.0F), "IntParser: contains an illegal number, error:0");
}

TEST(StrParser, RefusesALengthThatIsNoInteger) {
  try {
    IntParser(3).Parse("1", 1.0F);
    FAIL();
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(), "intParser: parser_length is not supported, error:3");
  }
}

TEST(StrParser, SaysWhichTypesCannotBeEntered) {
  testing::internal::CaptureStdout();
  EXPECT_TRUE(Encode("raw", "0102").empty());
  EXPECT_EQ(CreateStrParser("uint24"), nullptr);
  EXPECT_EQ(CreateStrParser("UINT8"), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "not developed\n"
            "DEBUG(): not support the format is uint24\n"
            "DEBUG(): not support the format is UINT8\n");
}

}  // namespace
