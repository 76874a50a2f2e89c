#include "value_encoder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "variables/value_text.h"

namespace {

using Bytes = std::vector<uint8_t>;

VarInfo Variable(const std::string& type, int32_t size, float coefficient = 1.0F,
                 const std::string& name = "Some") {
  VarInfo var;
  var.var_name = name;
  var.var_type = type;
  var.offset = size;
  var.coefficient = coefficient;
  return var;
}

struct Case {
  VarInfo var;
  const char* text;
  Bytes bytes;
  bool client_shows_it = true;
};

TEST(ValueEncoder, GivesTheBytesThatTheClientShowsAsTheText) {
  const std::vector<Case> cases = {
      {Variable("uint8", 1), "255", {0xFF}},
      {Variable("uint32", 4), "4000000000", {0xEE, 0x6B, 0x28, 0x00}},
      {Variable("uint64", 8),
       "18446744073709551615",
       {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}},
      {Variable("int8", 1), "-128", {0x80}},
      {Variable("int64", 8), "-2", {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE}},
      {Variable("int16", 2, 0.01F), "-41.25", {0xEF, 0xE3}},
      {Variable("uint8", 1, 0.5F), "1.50", {0x03}},
      {Variable("float32", 4), "360.00", {0x43, 0xB4, 0x00, 0x00}},
      {Variable("double", 8), "-1.50", {0xBF, 0xF8, 0, 0, 0, 0, 0, 0}},
      {Variable("string", 6), "Orca", {'O', 'r', 'c', 'a', 0, 0}},
      {Variable("IP", 4), "192.168.1.201", {0xC0, 0xA8, 0x01, 0xC9}, false},
      {Variable("MAC", 6, 1.0F, "MAC"), "02:4F:52:43:00:2A", {2, 0x4F, 0x52, 0x43, 0, 0x2A}},
      {Variable("DT", 4), "1 h 0 min 1 s", {0, 0, 0x0E, 0x11}},
      {Variable("raw", 4), "0x01 AB", {0x01, 0xAB, 0, 0}, false},
      {Variable("raw", 16, 1.0F, "HWVER"),
       "ORCA REV 3.1.210",
       {'O', 'R', 'C', 'A', ' ', 'R', 'E', 'V', ' ', 3, 1, 0, 210, 0, 0, 0}},
      {Variable("raw", 16, 1.0F, "SWVER_YMD"),
       "2026-10-18 v2.7.1.0",
       {'2', '0', '2', '6', '-', '1', '0', '-', '1', '8', ' ', 'v', 2, 7, 1, 0}},
  };
  for (const Case& c : cases) {
    Bytes bytes;
    std::string error;
    EXPECT_TRUE(EncodeValueText(c.var, c.text, &bytes, &error)) << c.text << ": " << error;
    EXPECT_EQ(bytes, c.bytes) << c.var.var_type << " " << c.text;
    std::string shown;
    std::string fault;
    if (c.client_shows_it) {
      EXPECT_TRUE(DecodeValue(c.var, bytes, &shown, &fault)) << fault;
      EXPECT_EQ(shown, c.text);
    }
  }
}

TEST(ValueEncoder, RefusesWhatDoesNotFitAndLeavesZeros) {
  const std::vector<std::pair<VarInfo, const char*>> cases = {
      {Variable("uint8", 1), "256"},
      {Variable("uint8", 1), "-1"},
      {Variable("int8", 1), "128"},
      {Variable("int8", 1), "-129"},
      {Variable("uint64", 8), "18446744073709551616"},
      {Variable("uint16", 2, 0.01F), "655.36"},
      {Variable("uint8", 1), "12x"},
      {Variable("float32", 4), "nan"},
      {Variable("string", 3), "Orca"},
      {Variable("IP", 4), "192.168.1"},
      {Variable("MAC", 6), "02-4F-52-43-00-2A"},
      {Variable("DT", 1), "256"},
      {Variable("DT", 4), "1 h 0 sec"},
      {Variable("raw", 16, 1.0F, "HWVER"), "ORCA REV 256.1.2"},
      {Variable("uint24", 3), "1"},
  };
  for (const auto& [var, text] : cases) {
    Bytes bytes = {1, 2, 3};
    std::string error;
    EXPECT_FALSE(EncodeValueText(var, text, &bytes, &error)) << var.var_type << " " << text;
    EXPECT_FALSE(error.empty());
    EXPECT_EQ(bytes, Bytes(static_cast<size_t>(var.offset), 0)) << text;
  }
}

}  // namespace
