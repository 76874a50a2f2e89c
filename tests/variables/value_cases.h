#pragma once

#include <string>
#include <vector>

#include "support/bytes.h"
#include "variables/var_info.h"

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

inline Bytes Ascii(const std::string& text) { return {text.begin(), text.end()}; }

/// Hold in both directions: what the tool shows of the bytes, and what the virtual lidar makes of
/// the text.
inline const ValueCase kValueCases[] = {
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
