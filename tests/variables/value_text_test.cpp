#include "variables/value_text.h"

#include <gtest/gtest.h>

#include "value_cases.h"

namespace {

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

}  // namespace
