#include "variables/value_text.h"

#include <gtest/gtest.h>

#include "support/german_locale.h"
#include "value_cases.h"
#include "variables/number_text.h"
#include "variables/str_parser.h"

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

}  // namespace
