#include "variables/str_parser.h"

#include <gtest/gtest.h>

#include <QByteArray>
#include <stdexcept>

namespace {

// The bytes in hexadecimal, or the words of the refusal.
std::string Outcome(StrParser& parser, const std::string& text, float coefficient) {
  try {
    const std::vector<uint8_t> bytes = parser.Parse(text, coefficient);
    return QByteArray::fromStdString({bytes.begin(), bytes.end()}).toHex(' ').toStdString();
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
}

TEST(StrParser, EncodesMostSignificantByteFirstOrSaysWhyNot) {
  const struct {
    const char* type;
    const char* text;
    const char* outcome;
    float coefficient = 1;
  } cases[] = {
      {"int8", "127", "7f"},
      {"int8", "-128", "80"},
      {"int8", "128", "IntParser: contains an illegal number, error:128"},
      {"int16", "2.5", "00 19", 0.1F},
      {"int16", "-1.9", "ff ff"},
      {"int16", "abc", "IntParser: contains an illegal number, error:abc"},
      {"int16", "0x10", "IntParser: contains an illegal number, error:0x10"},
      {"int16", "nan", "IntParser: contains an illegal number, error:nan"},
      // Twenty-four bits survive, and the upper bound is one more than the type holds.
      {"int32", "16777217", "01 00 00 00"},
      {"int32", "2147483647", "80 00 00 00"},
      {"int32", "1e-40", "IntParser: stof() failed, error:stof argument out of range"},
      {"int32", "\u00A07", "IntParser: stof() failed, error:invalid stof argument"},
      {"int64", "-2", "ff ff ff ff ff ff ff fe"},
      {"int64", "9223372036854775807", "80 00 00 00 00 00 00 00"},
      {"int64", "0", "IntParser: contains an illegal number, error:0", 0},
      {"uint8", " 7 ", "07"},
      {"uint8", "256", "UintParser: contains an illegal number, error:256"},
      {"uint16", "65535", "ff ff"},
      {"uint16", "-1", "UintParser: contains an illegal number, error:-1"},
      {"uint16", "nan", "UintParser: contains an illegal number, error:nan"},
      {"uint16", "1e-40", "UintParser: stof() failed, error:stof argument out of range"},
      // Four and eight bytes take only what truncates to 0.
      {"uint32", "0", "00 00 00 00"},
      {"uint32", "1", "UintParser: contains an illegal number, error:1"},
      {"uint32", "0.5", "UintParser: contains an illegal number, error:0.5", 0.1F},
      {"uint64", "0.9", "00 00 00 00 00 00 00 00"},
      {"u32", "16777217", "01 00 00 01"},
      {"u32", " +2.50 ", "00 00 00 fa", 0.01F},
      {"u32", "4294967296", "ExactParser: \"4294967296\" is not within 0 to 4294967295"},
      {"u32", "-1", "ExactParser: \"-1\" is not within 0 to 4294967295"},
      {"u32", "1e3", "ExactParser: \"1e3\" is no decimal number"},
      {"u32", "0", "00 00 00 00", 0},
      {"u32", "1", "ExactParser: \"1\" is no multiple of 0", 0},
      {"i32", "-12.345", "ExactParser: \"-12.345\" is no multiple of 0.01", 0.01F},
      {"i32", "-2147483.648",
       "ExactParser: \"-2147483.648\" is not within -2147483.647 to 2147483.648", -0.001F},
      {"i64", "-9223372036854775808", "80 00 00 00 00 00 00 00"},
      {"float32", "-0.5", "c0 00 00 00", 0.25F},
      {"float32", "inf", "7f 80 00 00"},
      {"float32", "1e-40", "FloatParser: stof() out of range, error:stof argument out of range"},
      {"float32", "\u00A07", "FloatParser: stof() failed, error:invalid stof argument"},
      {"double", "0.1", "3f b9 99 99 99 99 99 9a"},
      {"double", "abc", "DoubleParser: contains an illegal number, error:abc"},
      {"double", "\u00A07", "DoubleParser: stod() failed, error:invalid stod argument"},
      {"IP", "192.168.1.201", "c0 a8 01 c9"},
      {"IP", "192.168.1", "IPv4Parser: ip address, wrong format."},
      {"IP", "1.2.3.256", "IPv4Parser: contains an illegal number"},
      {"IP", "1..2.3", "IPv4Parser: contains an illegal number"},
      {"MAC", "00:1a:2B:ff:00:01", "00 1a 2b ff 00 01"},
      {"MAC", "00:1a:2B:ff:00", "MacParser: ip address, wrong format."},
      {"MAC", "00:1a:2B:ff:00:100", "MacParser: contains an illegal number"},
      {"MAC", "00:1a::ff:00:01", "MacParser: contains an illegal number"},
  };
  for (const auto& [type, text, outcome, coefficient] : cases) {
    EXPECT_EQ(Outcome(*CreateStrParser(type), text, coefficient), outcome) << type << ' ' << text;
  }
  IntParser three_bytes(3);
  EXPECT_EQ(Outcome(three_bytes, "1", 1), "intParser: parser_length is not supported, error:3");
}

TEST(StrParser, SaysWhichTypesCannotBeEntered) {
  testing::internal::CaptureStdout();
  EXPECT_TRUE(CreateStrParser("raw")->Parse("0102", 1).empty());
  EXPECT_EQ(CreateStrParser("UINT8"), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "not developed\nDEBUG(): not support the format is UINT8\n");
}

}  // namespace
