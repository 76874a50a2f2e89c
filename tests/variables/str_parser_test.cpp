#include "variables/str_parser.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using Bytes = std::vector<uint8_t>;

TEST(StrParser, EncodesMostSignificantByteFirst) {
  struct Case {
    const char* type;
    const char* text;
    float coefficient;
    Bytes bytes;
  };
  const Case cases[] = {
      {"int8", "127", 1, {0x7F}},
      {"int8", "-128", 1, {0x80}},
      {"int16", "-2", 1, {0xFF, 0xFE}},
      {"int16", "2.5", 0.1F, {0x00, 0x19}},
      {"int16", "-1.9", 1, {0xFF, 0xFF}},
      {"int64", "-2", 1, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE}},
      // Twenty-four bits survive, and the upper bound is one more than the type holds.
      {"int32", "16777217", 1, {0x01, 0x00, 0x00, 0x00}},
      {"int32", "2147483647", 1, {0x80, 0x00, 0x00, 0x00}},
      {"int64", "9223372036854775807", 1, {0x80, 0, 0, 0, 0, 0, 0, 0}},
      {"uint8", "255", 1, {0xFF}},
      {"uint8", " 7 ", 1, {0x07}},
      {"uint8", "1e2", 1, {0x64}},
      {"uint16", "65535", 1, {0xFF, 0xFF}},
      {"uint32", "0", 1, {0x00, 0x00, 0x00, 0x00}},
      {"uint64", "0.9", 1, {0, 0, 0, 0, 0, 0, 0, 0}},
      {"float32", "-0.5", 0.25F, {0xC0, 0x00, 0x00, 0x00}},
      {"float32", "inf", 1, {0x7F, 0x80, 0x00, 0x00}},
      {"double", "0.1", 1, {0x3F, 0xB9, 0x99, 0x99, 0x99, 0x99, 0x99, 0x9A}},
      {"double", "-0.5", 0.25F, {0xC0, 0, 0, 0, 0, 0, 0, 0}},
      {"IP", "192.168.1.201", 1, {0xC0, 0xA8, 0x01, 0xC9}},
      {"MAC", "00:1a:2B:ff:00:01", 1, {0x00, 0x1A, 0x2B, 0xFF, 0x00, 0x01}},
  };
  for (const auto& [type, text, coefficient, bytes] : cases) {
    EXPECT_EQ(CreateStrParser(type)->Parse(text, coefficient), bytes) << type << ' ' << text;
  }
}

void ExpectRefusal(StrParser& parser, const std::string& text, float coefficient,
                   const std::string& message) {
  try {
    parser.Parse(text, coefficient);
    ADD_FAILURE() << text << " was accepted; expected " << message;
  } catch (const std::invalid_argument& error) {
    EXPECT_EQ(error.what(), message) << text;
  }
}

TEST(StrParser, RefusesNumbersWithTheWordsThatTheUserSees) {
  const std::pair<const char*, std::vector<const char*>> illegal[] = {
      {"int8", {"128", "-129"}},
      {"int16", {"", "abc", "0x10", "12 V", "1,5", "nan"}},
      {"int32", {"1e40"}},
      {"uint8", {"", "256"}},
      {"uint16", {"65536", "-1", "nan"}},
      {"uint32", {"1", "4294967295"}},
      {"uint64", {"1"}},
      {"float32", {"abc", "1e40"}},
      {"double", {"abc"}},
  };
  const auto name = [](const std::string& type) {
    return type[0] == 'i'   ? "IntParser"
           : type[0] == 'u' ? "UintParser"
           : type[0] == 'f' ? "FloatParser"
                            : "DoubleParser";
  };
  for (const auto& [type, texts] : illegal) {
    for (const std::string text : texts) {
      ExpectRefusal(*CreateStrParser(type), text, 1,
                    std::string(name(type)) + ": contains an illegal number, error:" + text);
    }
  }
}

TEST(StrParser, RefusesTheRestWithFixedWords) {
  const std::string cases[][3] = {
      {"int32", "1e-40", "IntParser: stof() failed, error:stof argument out of range"},
      {"int32", "\u00A07", "IntParser: stof() failed, error:invalid stof argument"},
      {"uint16", "1e-40", "UintParser: stof() failed, error:stof argument out of range"},
      {"float32", "1e-40", "FloatParser: stof() out of range, error:stof argument out of range"},
      {"float32", "\u00A07", "FloatParser: stof() failed, error:invalid stof argument"},
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
  for (const auto& [type, text, message] : cases) {
    ExpectRefusal(*CreateStrParser(type), text, 1, message);
  }
  ExpectRefusal(*CreateStrParser("uint32"), "0.5", 0.1F,
                "UintParser: contains an illegal number, error:0.5");
  ExpectRefusal(*CreateStrParser("int64"), "0", 0,
                "IntParser: contains an illegal number, error:0");
  IntParser three_bytes(3);
  ExpectRefusal(three_bytes, "1", 1, "intParser: parser_length is not supported, error:3");
}

TEST(StrParser, SaysWhichTypesCannotBeEntered) {
  testing::internal::CaptureStdout();
  EXPECT_TRUE(CreateStrParser("raw")->Parse("0102", 1).empty());
  EXPECT_EQ(CreateStrParser("uint24"), nullptr);
  EXPECT_EQ(CreateStrParser("UINT8"), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "not developed\n"
            "DEBUG(): not support the format is uint24\n"
            "DEBUG(): not support the format is UINT8\n");
}

}  // namespace
