// Values both ways: what the tool shows of the bytes, and what the virtual lidar makes of the text.

#include "variables/value_text.h"

#include <gtest/gtest.h>

#include "support/bytes.h"
#include "support/german_locale.h"
#include "variables/number_text.h"
#include "variables/str_parser.h"
#include "variables/value_encoder.h"

namespace {

/// A value as the device holds it and as the user reads it.
struct ValueCase {
  const char* type;
  const char* text;
  Bytes bytes;
  float coefficient = 1.0F;
  const char* name = "Value";  ///< some names decide over the type

  VarInfo Variable() const {
    static TextPool texts;
    VarInfo var;
    SetValueType(texts.Share(type), &var);
    var.var_name = name;
    var.coefficient = coefficient;
    var.offset = static_cast<int32_t>(bytes.size());
    return var;
  }
};

Bytes Ascii(const std::string& text) { return {text.begin(), text.end()}; }

// Hold in both directions.
const ValueCase kValueCases[] = {
    {"uint8", "255", {0xFF}},
    {"uint32", "4000000000", {0xEE, 0x6B, 0x28, 0x00}},
    {"uint64", "18446744073709551615", Bytes(8, 0xFF)},
    {"int8", "-128", {0x80}},
    {"int16", "-32768", {0x80, 0x00}},
    {"int32", "-2", {0xFF, 0xFF, 0xFF, 0xFE}},
    {"int64", "-9223372036854775808", {0x80, 0, 0, 0, 0, 0, 0, 0}},
    {"u32", "4294967295", Bytes(4, 0xFF)},
    {"u32", "12.00", {0, 0, 0x04, 0xB0}, 0.01F},
    {"u64", "9223372036854775807.5", Bytes(8, 0xFF), 0.5F},
    {"i32", "-5.0", {0xFF, 0xFF, 0xFF, 0xF6}, 0.5F},
    {"i64", "-92233720368547758.08", {0x80, 0, 0, 0, 0, 0, 0, 0}, 0.01F},
    {"i64", "9223372036854775807000", {0x7F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, 1000},
    {"float32", "360.00", {0x43, 0xB4, 0, 0}},
    {"double", "-0.10", {0xBF, 0xB9, 0x99, 0x99, 0x99, 0x99, 0x99, 0x9A}},
    {"string", "Orca", Ascii("Orca") + Bytes{0, 0}},
    {"IP", "192.168.1.201", {192, 168, 1, 201}},
    {"MAC", "02:AB:00:00:00:0F", {0x02, 0xAB, 0, 0, 0, 0x0F}},
    {"DT", "1 h 0 min 1 s", {0x00, 0x00, 0x0E, 0x11}},
    {"DT", "5124095576030431 h 0 min 15 s", Bytes(8, 0xFF)},
    {"uint8", "1.50", {0x03}, 0.5F},
    {"int16", "-41.25", {0xEF, 0xE3}, 0.01F},
    // The scale is 0.01, not the single-precision number next to it.
    {"uint32", "10000000.00", {0x3B, 0x9A, 0xCA, 0x00}, 0.01F},
    {"float32", "1.50", {0x40, 0x40, 0, 0}, 0.5F},
    {"raw", "AA:BB:CC:DD:EE:FF", {0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}, 1, "MAC"},
    {"raw", "ORCA-HW-B3.1.258", Ascii("ORCA-HW-B") + Bytes{3, 1, 1, 2, 0, 0, 0}, 1, "HWVER"},
    {"string", "ORCA-HW-B3.1.258.7", Ascii("ORCA-HW-B") + Bytes{3, 1, 1, 2, 0, 7, 0}, 1, "HWVER"},
    {"raw", "2026-10-18 v2.7.1.255", Ascii("2026-10-18 v") + Bytes{2, 7, 1, 255}, 1, "SWVER_YMD"},
};

std::string Decode(const ValueCase& value) {
  std::string text = "untouched";
  std::string fault;
  if (DecodeValue(value.Variable(), value.bytes, &text, &fault)) {
    return text;
  }
  EXPECT_EQ(text, "untouched");
  return "fault: " + fault;
}

TEST(ValueText, WritesEveryTypeAsTheUserReadsIt) {
  for (const ValueCase& value : kValueCases) {
    EXPECT_EQ(Decode(value), value.text) << value.type;
  }
  const Bytes largest = {0x7F, 0xEF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
  EXPECT_EQ(Decode({"double", "", largest}).size(), 309U + 3U);
}

TEST(ValueText, SaysWhyAValueHasNoText) {
  const ValueCase cases[] = {
      {"raw", "fault: var_type not support: raw", {1, 2}},
      {"uint24", "fault: var_type not support: uint24", {1, 2, 3}},
      {"MAC", "fault: MAC address size is less than 6, please check your config file", Bytes(5)},
      {"raw", "fault: HWVER size is not qual to 16, please check your config file", Bytes(17), 1,
       "HWVER"},
      {"raw", "fault: SWVER_YMD size is not qual to 16, please check your config file", Bytes(15),
       1, "SWVER_YMD"},
  };
  for (const ValueCase& value : cases) {
    EXPECT_EQ(Decode(value), value.text);
  }
  // A table may claim any length for any type.
  for (const char* type : {"uint16", "int64", "float32", "double", "IP", "MAC"}) {
    EXPECT_EQ(Decode({type, "", {1}}).rfind("fault: ", 0), 0U) << type;
  }
  EXPECT_EQ(Decode({"DT", "", Bytes(9)}).rfind("fault: ", 0), 0U);
}

TEST(ValueText, KeepsItsPointWhereNumbersHaveCommas) {
  const GermanLocale locale;
  if (!locale.works()) {
    GTEST_SKIP() << "no German locale, and no localedef to make one";
  }
  for (const ValueCase& value : kValueCases) {
    EXPECT_EQ(Decode(value), value.text) << value.type;
  }
  EXPECT_EQ(CreateStrParser("int16")->Parse("2.5", 0.1F), (Bytes{0x00, 0x19}));
  EXPECT_EQ(CreateStrParser("double")->Parse("0.5", 1.0F), (Bytes{0x3F, 0xE0, 0, 0, 0, 0, 0, 0}));
  EXPECT_THROW(CreateStrParser("float32")->Parse("0,5", 1.0F), std::invalid_argument);
  EXPECT_EQ(DecimalNumber("0.25"), 0.25F);
}

TEST(ValueEncoder, GivesTheBytesThatTheClientShowsAsTheText) {
  std::string error;
  Bytes bytes;
  for (const ValueCase& value : kValueCases) {
    EXPECT_TRUE(EncodeValueText(value.Variable(), value.text, &bytes, &error)) << error;
    EXPECT_EQ(bytes, value.bytes) << value.type << ' ' << value.text;
  }
  const ValueCase raw = {"raw", "0x01 AB", {0x01, 0xAB, 0, 0}};
  EXPECT_TRUE(EncodeValueText(raw.Variable(), raw.text, &bytes, &error)) << error;
  EXPECT_EQ(bytes, raw.bytes);
}

TEST(ValueEncoder, RefusesWhatDoesNotFitAndLeavesZeros) {
  const ValueCase cases[] = {
      {"uint8", "256", Bytes(1)},
      {"uint8", "-1", Bytes(1)},
      {"uint8", "12x", Bytes(1)},
      {"int8", "128", Bytes(1)},
      {"int8", "-129", Bytes(1)},
      {"uint64", "18446744073709551616", Bytes(8)},
      {"uint16", "655.36", Bytes(2), 0.01F},
      {"float32", "nan", Bytes(4)},
      {"string", "Orca", Bytes(3)},
      {"IP", "192.168.1", Bytes(4)},
      {"MAC", "02-4F-52-43-00-2A", Bytes(6)},
      {"DT", "256", Bytes(1)},
      {"DT", "5124095576030431 h 0 min 16 s", Bytes(8)},
      {"DT", "1 h 0 sec", Bytes(4)},
      {"raw", "ORCA REV 256.1.2", Bytes(16), 1, "HWVER"},
      {"uint24", "1", Bytes(3)},
  };
  for (const ValueCase& value : cases) {
    Bytes bytes = {1, 2, 3};
    std::string error;
    EXPECT_FALSE(EncodeValueText(value.Variable(), value.text, &bytes, &error)) << value.text;
    EXPECT_FALSE(error.empty());
    EXPECT_EQ(bytes, value.bytes);
  }
}

}  // namespace
