#include "variables/value_text.h"

#include <gtest/gtest.h>

#include "support/bytes.h"

namespace {

std::string Decode(const std::string& type, const std::string& name, float coefficient,
                   const Bytes& slice) {
  VarInfo var;
  SetValueType(type, &var);
  var.var_name = name;
  var.coefficient = coefficient;
  std::string text = "untouched";
  std::string fault;
  if (DecodeValue(var, slice, &text, &fault)) {
    return text;
  }
  EXPECT_EQ(text, "untouched");
  return "fault: " + fault;
}

TEST(ValueText, WritesEveryTypeAsTheUserReadsIt) {
  struct Case {
    const char* type;
    float coefficient;
    Bytes slice;
    const char* text;
  };
  const Case cases[] = {
      {"uint8", 1, {0xFF}, "255"},
      {"int8", 1, {0xFF}, "-1"},
      {"int16", 1, {0x80, 0x00}, "-32768"},
      {"int32", 1, {0xFF, 0xFF, 0xFF, 0xFE}, "-2"},
      {"uint64", 1, Bytes(8, 0xFF), "18446744073709551615"},
      {"int64", 1, {0x80, 0, 0, 0, 0, 0, 0, 0}, "-9223372036854775808"},
      {"float32", 1, {0x3F, 0x80, 0, 0}, "1.00"},
      {"double", 1, {0xBF, 0xB9, 0x99, 0x99, 0x99, 0x99, 0x99, 0x9A}, "-0.10"},
      {"string", 1, {'O', 'r', 'c', 'a', 0, 0}, "Orca"},
      {"IP", 1, {192, 168, 1, 201}, "192.168.1.201"},
      {"MAC", 1, {0x02, 0xAB, 0, 0, 0, 0x0F}, "02:AB:00:00:00:0F"},
      {"DT", 1, {0x00, 0x00, 0x0E, 0x11}, "1 h 0 min 1 s"},
      {"DT", 1, Bytes(8, 0xFF), "5124095576030431 h 0 min 15 s"},
      {"uint8", 0.5F, {0x03}, "1.50"},
      {"int16", 0.01F, {0xFF, 0x9C}, "-1.00"},
      // The scale is 0.01, not the single-precision number next to it.
      {"uint32", 0.01F, {0x3B, 0x9A, 0xCA, 0x00}, "10000000.00"},
      {"float32", 0.5F, {0x40, 0x40, 0, 0}, "1.50"},
      {"raw", 1, {1, 2}, "fault: var_type not support: raw"},
      {"uint24", 1, {1, 2, 3}, "fault: var_type not support: uint24"},
  };
  for (const auto& [type, coefficient, slice, text] : cases) {
    EXPECT_EQ(Decode(type, "Value", coefficient, slice), text) << type << ' ' << text;
  }
  const Bytes largest = {0x7F, 0xEF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
  EXPECT_EQ(Decode("double", "Value", 1, largest).size(), 309U + 3U);
  // A table may claim any length for any type.
  for (const char* type : {"uint16", "int64", "float32", "double", "IP", "MAC"}) {
    EXPECT_EQ(Decode(type, "Value", 1, {1}).rfind("fault: ", 0), 0U) << type;
  }
  EXPECT_EQ(Decode("DT", "Value", 1, Bytes(9)).rfind("fault: ", 0), 0U);
}

TEST(ValueText, TheNameOfAVariableComesBeforeItsType) {
  EXPECT_EQ(Decode("raw", "MAC", 1, {0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF, 0x00}),
            "AA:BB:CC:DD:EE:FF");
  EXPECT_EQ(Decode("MAC", "MAC", 1, Bytes(5)),
            "fault: MAC address size is less than 6, please check your config file");
  Bytes hardware = {'O', 'R', 'C', 'A', '-', 'H', 'W', '-', 'B', 3, 1, 0x01, 0x02, 0, 0, 0xEE};
  EXPECT_EQ(Decode("raw", "HWVER", 1, hardware), "ORCA-HW-B3.1.258");
  hardware[14] = 7;
  EXPECT_EQ(Decode("string", "HWVER", 1, hardware), "ORCA-HW-B3.1.258.7");
  EXPECT_EQ(Decode("raw", "HWVER", 1, Bytes(17)),
            "fault: HWVER size is not qual to 16, please check your config file");
  EXPECT_EQ(Decode("raw", "SWVER_YMD", 1,
                   {'2', '0', '2', '6', '-', '1', '0', '-', '1', '8', ' ', 'v', 2, 7, 1, 255}),
            "2026-10-18 v2.7.1.255");
  EXPECT_EQ(Decode("raw", "SWVER_YMD", 1, Bytes(15)),
            "fault: SWVER_YMD size is not qual to 16, please check your config file");
}

}  // namespace
