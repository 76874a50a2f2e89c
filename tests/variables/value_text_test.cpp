#include "variables/value_text.h"

#include <gtest/gtest.h>

namespace {

using Bytes = std::vector<uint8_t>;

VarInfo Variable(const std::string& type, const std::string& name = "Value",
                 float coefficient = 1.0F) {
  VarInfo var;
  var.var_type = type;
  var.var_name = name;
  var.coefficient = coefficient;
  return var;
}

std::string Decode(const VarInfo& var, const Bytes& slice) {
  std::string text = "untouched";
  std::string fault;
  if (!DecodeValue(var, slice, &text, &fault)) {
    EXPECT_EQ(text, "untouched");
    return "fault: " + fault;
  }
  return text;
}

TEST(ValueText, WritesEveryTypeAsTheUserReadsIt) {
  EXPECT_EQ(Decode(Variable("uint8"), {0xFF}), "255");
  EXPECT_EQ(Decode(Variable("int8"), {0xFF}), "-1");
  EXPECT_EQ(Decode(Variable("uint16"), {0x01, 0x00}), "256");
  EXPECT_EQ(Decode(Variable("int16"), {0x80, 0x00}), "-32768");
  EXPECT_EQ(Decode(Variable("uint32"), {0xFF, 0xFF, 0xFF, 0xFF}), "4294967295");
  EXPECT_EQ(Decode(Variable("int32"), {0xFF, 0xFF, 0xFF, 0xFE}), "-2");
  EXPECT_EQ(Decode(Variable("uint64"), Bytes(8, 0xFF)), "18446744073709551615");
  EXPECT_EQ(Decode(Variable("int64"), {0x80, 0, 0, 0, 0, 0, 0, 0}), "-9223372036854775808");
  EXPECT_EQ(Decode(Variable("float32"), {0x3F, 0x80, 0, 0}), "1.00");
  EXPECT_EQ(Decode(Variable("double"), {0xBF, 0xB9, 0x99, 0x99, 0x99, 0x99, 0x99, 0x9A}), "-0.10");
  EXPECT_EQ(Decode(Variable("string"), {'O', 'r', 'c', 'a', 0, 0}), "Orca");
  EXPECT_EQ(Decode(Variable("IP"), {192, 168, 1, 201}), "192.168.1.201");
  EXPECT_EQ(Decode(Variable("MAC"), {0x02, 0xAB, 0, 0, 0, 0x0F}), "02:AB:00:00:00:0F");
  EXPECT_EQ(Decode(Variable("DT"), {0x00, 0x00, 0x0E, 0x11}), "1 h 0 min 1 s");
  EXPECT_EQ(Decode(Variable("DT"), Bytes(8, 0xFF)), "5124095576030431 h 0 min 15 s");
}

TEST(ValueText, ScalesWithTwoDecimals) {
  EXPECT_EQ(Decode(Variable("uint8", "Value", 0.5F), {0x03}), "1.50");
  EXPECT_EQ(Decode(Variable("int16", "Value", 0.01F), {0xFF, 0x9C}), "-1.00");
  EXPECT_EQ(Decode(Variable("uint8", "Value", 2.0F), {0x03}), "6.00");
  // The scale is 0.01, not the single-precision number next to it.
  EXPECT_EQ(Decode(Variable("uint32", "Value", 0.01F), {0x3B, 0x9A, 0xCA, 0x00}), "10000000.00");
  EXPECT_EQ(Decode(Variable("float32", "Value", 0.5F), {0x40, 0x40, 0, 0}), "1.50");
  // The largest double has 309 digits before the point.
  EXPECT_EQ(
      Decode(Variable("double", "Value", 1.0F), {0x7F, 0xEF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF})
          .size(),
      312U);
}

TEST(ValueText, TheNameOfAVariableComesBeforeItsType) {
  EXPECT_EQ(Decode(Variable("raw", "MAC"), {0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF, 0x00}),
            "AA:BB:CC:DD:EE:FF");
  Bytes hardware = {'O', 'R', 'C', 'A', '-', 'H', 'W', '-', 'B', 3, 1, 0x01, 0x02, 0, 0, 0xEE};
  EXPECT_EQ(Decode(Variable("raw", "HWVER"), hardware), "ORCA-HW-B3.1.258");
  hardware[14] = 7;
  EXPECT_EQ(Decode(Variable("string", "HWVER"), hardware), "ORCA-HW-B3.1.258.7");
  EXPECT_EQ(Decode(Variable("raw", "SWVER_YMD"),
                   {'2', '0', '2', '6', '-', '1', '0', '-', '1', '8', ' ', 'v', 2, 7, 1, 255}),
            "2026-10-18 v2.7.1.255");
}

TEST(ValueText, SaysWhyBytesDoNotFit) {
  EXPECT_EQ(Decode(Variable("MAC", "MAC"), Bytes(5)),
            "fault: MAC address size is less than 6, please check your config file");
  EXPECT_EQ(Decode(Variable("raw", "HWVER"), Bytes(17)),
            "fault: HWVER size is not qual to 16, please check your config file");
  EXPECT_EQ(Decode(Variable("raw", "SWVER_YMD"), Bytes(15)),
            "fault: SWVER_YMD size is not qual to 16, please check your config file");
  EXPECT_EQ(Decode(Variable("raw"), {1, 2}), "fault: var_type not support: raw");
  EXPECT_EQ(Decode(Variable("uint24"), {1, 2, 3}), "fault: var_type not support: uint24");
  // A table may claim any length for any type.
  for (const char* type : {"uint16", "int64", "float32", "double", "IP", "MAC"}) {
    EXPECT_EQ(Decode(Variable(type), {1}).rfind("fault: ", 0), 0U) << type;
  }
  EXPECT_EQ(Decode(Variable("DT"), Bytes(9)).rfind("fault: ", 0), 0U);
  EXPECT_EQ(Decode(Variable("DT"), {}), "0 h 0 min 0 s");
  EXPECT_EQ(Decode(Variable("string"), {}), "");
}

}  // namespace
