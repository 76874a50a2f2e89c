#include "variables/value_encoder.h"

#include <gtest/gtest.h>

#include "variables/value_cases.h"

namespace {

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
