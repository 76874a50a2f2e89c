#include "variables/value_encoder.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "Platform/ipv4_text.h"
#include "Wire/big_endian.h"
#include "variables/exact_number.h"
#include "variables/hex_cell.h"
#include "variables/number_text.h"

namespace {

using Bytes = std::vector<uint8_t>;

std::string_view WithoutPlus(std::string_view text) {
  return !text.empty() && text.front() == '+' ? text.substr(1) : text;
}

Bytes BigEndian(uint64_t value, size_t size) {
  const size_t counted = std::min(size, sizeof value);
  Bytes bytes(size - counted);
  kavel::lidar::AppendBigEndian(bytes, value, counted);
  return bytes;
}

// Exact up to the full width when nothing scales the value.
std::optional<uint64_t> ScaledInteger(const std::string& text, float coefficient,
                                      const ValueType& type) {
  const int bits = 8 * type.size;
  if (coefficient == 1.0F) {
    const int unused = 64 - bits;
    if (const auto number = WholeNumber<int64_t>(WithoutPlus(text));
        number && (type.is_signed || *number >= 0)) {
      const auto wide = static_cast<uint64_t>(*number);
      const bool fits = type.is_signed ? (static_cast<int64_t>(wide << unused) >> unused) == *number
                                       : wide >> (bits - 1) <= 1;
      return fits ? std::optional(wide) : std::nullopt;
    }
    if (type.is_signed) {
      return std::nullopt;
    }
    const auto number = WholeNumber<uint64_t>(WithoutPlus(text));
    return number && bits == 64 ? number : std::nullopt;
  }
  const auto value = DecimalNumber<double>(WithoutPlus(text));
  if (!value) {
    return std::nullopt;
  }
  const double raw = std::nearbyint(*value / AsWritten(coefficient));
  const double lowest = type.is_signed ? -std::ldexp(1.0, bits - 1) : 0.0;
  const double bound = std::ldexp(1.0, type.is_signed ? bits - 1 : bits);
  if (!(raw >= lowest && raw < bound)) {
    return std::nullopt;
  }
  return raw < 0 ? static_cast<uint64_t>(static_cast<int64_t>(raw)) : static_cast<uint64_t>(raw);
}

std::optional<Bytes> EncodeInteger(const VarInfo& var, const std::string& text) {
  if (var.value_type->is_exact) {
    const auto bits = ExactBits(*var.value_type, text, var.coefficient);
    const auto* number = std::get_if<uint64_t>(&bits);
    return number == nullptr
               ? std::nullopt
               : std::optional(BigEndian(*number, static_cast<size_t>(var.value_type->size)));
  }
  const auto raw = ScaledInteger(text, var.coefficient, *var.value_type);
  if (!raw) {
    return std::nullopt;
  }
  return BigEndian(*raw, static_cast<size_t>(var.value_type->size));
}

std::optional<Bytes> EncodeReal(const VarInfo& var, const std::string& text) {
  const auto shown = DecimalNumber<double>(WithoutPlus(text));
  if (!shown) {
    return std::nullopt;
  }
  const double value = *shown / AsWritten(var.coefficient);
  return var.value_type->size == sizeof(double)
             ? BigEndian(kavel::lidar::BitsOf(value), sizeof(double))
             : BigEndian(kavel::lidar::BitsOf(static_cast<float>(value)), sizeof(float));
}

std::optional<Bytes> EncodeIp(const std::string& text) {
  Bytes bytes(4);
  if (!kavel::lidar::ParseDottedIpv4(text, bytes.data())) {
    return std::nullopt;
  }
  return bytes;
}

std::optional<Bytes> EncodeMac(const std::string& text) {
  Bytes bytes;
  if (text.size() != 17) {
    return std::nullopt;
  }
  for (size_t at = 0; at < text.size(); at += 3) {
    const auto byte = WholeNumber<uint8_t>(std::string_view(text).substr(at, 2), 16);
    if (!byte || (at + 2 < text.size() && text[at + 2] != ':')) {
      return std::nullopt;
    }
    bytes.push_back(*byte);
  }
  return bytes;
}

// Hexadecimal pairs with or without a prefix and blanks, else the characters themselves.
Bytes RawBytes(const std::string& text) {
  std::string digits;
  std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
               [](char c) { return c != ' '; });
  std::optional<Bytes> pairs;
  if (digits.size() % 2 == 0) {
    pairs = HexPairs(WithoutHexPrefix(digits));
  }
  return pairs ? std::move(*pairs) : Bytes(text.begin(), text.end());
}

// "1 h 0 min 1 s", any of the three left out, or a bare count of seconds.
std::optional<uint64_t> Seconds(const std::string& text) {
  if (const auto bare = WholeNumber<uint64_t>(WithoutPlus(text))) {
    return bare;
  }
  uint64_t seconds = 0;
  const char* at = text.data();
  const char* const end = at + text.size();
  for (const auto& [unit, factor] : {std::pair{"h", 3600U}, {"min", 60U}, {"s", 1U}}) {
    uint64_t count = 0;
    const auto [digits_end, fault] = std::from_chars(at, end, count);
    const std::string tail = std::string(" ") + unit;
    const std::string_view rest(digits_end, static_cast<size_t>(end - digits_end));
    if (fault != std::errc() || rest.substr(0, tail.size()) != tail) {
      continue;
    }
    if (count > (std::numeric_limits<uint64_t>::max() - seconds) / factor) {
      return std::nullopt;
    }
    seconds += count * factor;
    at = digits_end + tail.size();
    if (at != end && *at == ' ') {
      ++at;
    }
  }
  return at == end ? std::optional(seconds) : std::nullopt;
}

std::optional<Bytes> EncodeDuration(const VarInfo& var, const std::string& text) {
  const auto size = static_cast<size_t>(var.offset);
  const auto seconds = Seconds(text);
  if (!seconds || (size < 8 && *seconds >> (8 * size) != 0)) {
    return std::nullopt;
  }
  return BigEndian(*seconds, size);
}

// Versions: some characters, then numbers separated by dots, whose widths in bytes are given.
std::optional<Bytes> EncodeVersion(const std::string& text, size_t characters,
                                   const std::vector<size_t>& widths) {
  if (text.size() < characters) {
    return std::nullopt;
  }
  Bytes bytes(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(characters));
  size_t at = characters;
  for (const size_t width : widths) {
    // Trailing numbers may be left out.
    if (at >= text.size()) {
      bytes.insert(bytes.end(), width, 0);
      continue;
    }
    const size_t dot = std::min(text.find('.', at), text.size());
    const auto number = WholeNumber<uint16_t>(std::string_view(text).substr(at, dot - at));
    if (!number || *number >> (8 * width) != 0) {
      return std::nullopt;
    }
    const Bytes encoded = BigEndian(*number, width);
    bytes.insert(bytes.end(), encoded.begin(), encoded.end());
    at = dot + 1;
  }
  if (at < text.size()) {
    return std::nullopt;
  }
  bytes.resize(16);
  return bytes;
}

std::optional<Bytes> Encode(const VarInfo& var, const std::string& text) {
  if (var.var_name == "HWVER") {
    return EncodeVersion(text, 9, {1, 1, 2, 2});
  }
  if (var.var_name == "SWVER_YMD") {
    return EncodeVersion(text, 12, {1, 1, 1, 1});
  }
  if (var.var_name == "MAC") {
    return EncodeMac(text);
  }
  switch (var.value_type->kind) {
    case ValueKind::kInteger:
      return EncodeInteger(var, text);
    case ValueKind::kReal:
      return EncodeReal(var, text);
    case ValueKind::kAddress:
      return EncodeIp(text);
    case ValueKind::kMac:
      return EncodeMac(text);
    case ValueKind::kDuration:
      return EncodeDuration(var, text);
    case ValueKind::kRaw:
      return RawBytes(text);
    case ValueKind::kText:
      return Bytes(text.begin(), text.end());
    case ValueKind::kUnknown:
      break;
  }
  return std::nullopt;
}

}  // namespace

bool EncodeValueText(const VarInfo& var, const std::string& text, std::vector<uint8_t>* bytes,
                     std::string* error) {
  const auto size = static_cast<size_t>(std::max(var.offset, 0));
  bytes->assign(size, 0);
  if (text.empty()) {
    return true;
  }
  std::optional<Bytes> encoded = Encode(var, text);
  if (!encoded) {
    *error = "\"" + text + "\" is no value of type " + var.var_type.str();
    return false;
  }
  if (encoded->size() > size) {
    *error = "\"" + text + "\" needs " + std::to_string(encoded->size()) + " bytes and has " +
             std::to_string(size);
    return false;
  }
  encoded->resize(size);
  *bytes = std::move(*encoded);
  return true;
}
