#include "device/value_encoder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/bytes.h"
#include "variables/value_text.h"

namespace {

// A variable that has its name from its type; some raw ones have a text form that goes by the name.
VarInfo Variable(const std::string& name, size_t size, float coefficient) {
  VarInfo var;
  var.var_name = name;
  SetValueType(name == "HWVER" || name == "SWVER_YMD" ? "raw" : name, &var);
  var.offset = static_cast<int32_t>(size);
  var.coefficient = coefficient;
  return var;
}

Bytes Text(const std::string& text, const Bytes& tail) {
  Bytes bytes(text.begin(), text.end());
  bytes.insert(bytes.end(), tail.begin(), tail.end());
  return bytes;
}

struct Case {
  const char* type;
  const char* text;
  Bytes bytes;
  float coefficient = 1.0F;
};

TEST(ValueEncoder, GivesTheBytesThatTheClientShowsAsTheText) {
  const Case cases[] = {
      {"uint8", "255", {0xFF}},
      {"uint32", "4000000000", {0xEE, 0x6B, 0x28, 0x00}},
      {"uint64", "18446744073709551615", Bytes(8, 0xFF)},
      {"int8", "-128", {0x80}},
      {"int64", "-2", {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE}},
      {"int16", "-41.25", {0xEF, 0xE3}, 0.01F},
      {"uint8", "1.50", {0x03}, 0.5F},
      {"float32", "360.00", {0x43, 0xB4, 0x00, 0x00}},
      {"double", "-1.50", {0xBF, 0xF8, 0, 0, 0, 0, 0, 0}},
      {"string", "Orca", {'O', 'r', 'c', 'a', 0, 0}},
      {"IP", "192.168.1.201", {0xC0, 0xA8, 0x01, 0xC9}},
      {"MAC", "02:4F:52:43:00:2A", {2, 0x4F, 0x52, 0x43, 0, 0x2A}},
      {"DT", "1 h 0 min 1 s", {0, 0, 0x0E, 0x11}},
      {"raw", "0x01 AB", {0x01, 0xAB, 0, 0}},
      {"HWVER", "ORCA REV 3.1.210", Text("ORCA REV ", {3, 1, 0, 210, 0, 0, 0})},
      {"SWVER_YMD", "2026-10-18 v2.7.1.0", Text("2026-10-18 v", {2, 7, 1, 0})},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.type) + " " + c.text);
    const VarInfo var = Variable(c.type, c.bytes.size(), c.coefficient);
    Bytes bytes;
    std::string error;
    EXPECT_TRUE(EncodeValueText(var, c.text, &bytes, &error)) << error;
    EXPECT_EQ(bytes, c.bytes);
    // A client shows these two in another way.
    if (var.var_name == "IP" || var.var_name == "raw") {
      continue;
    }
    std::string shown;
    EXPECT_TRUE(DecodeValue(var, bytes, &shown, &error)) << error;
    EXPECT_EQ(shown, c.text);
  }
}

TEST(ValueEncoder, RefusesWhatDoesNotFitAndLeavesZeros) {
  const Case cases[] = {
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
      {"DT", "1 h 0 sec", Bytes(4)},
      {"HWVER", "ORCA REV 256.1.2", Bytes(16)},
      {"uint24", "1", Bytes(3)},
  };
  for (const Case& c : cases) {
    Bytes bytes = {1, 2, 3};
    std::string error;
    const VarInfo var = Variable(c.type, c.bytes.size(), c.coefficient);
    EXPECT_FALSE(EncodeValueText(var, c.text, &bytes, &error)) << c.type << " " << c.text;
    EXPECT_FALSE(error.empty());
    EXPECT_EQ(bytes, c.bytes);
  }
}

}  // namespace
