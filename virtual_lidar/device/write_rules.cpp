#include "device/write_rules.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

#include "Wire/big_endian.h"
#include "variables/exact_number.h"
#include "variables/number_text.h"
#include "variables/value_encoder.h"

namespace {

using Bytes = std::vector<uint8_t>;

// The number as a client shows it; nothing for types that are none.
std::optional<double> ShownNumber(const ValueType& type, const Bytes& bytes, float coefficient) {
  if (!type.is_number() || bytes.size() != static_cast<size_t>(type.size)) {
    return std::nullopt;
  }
  const uint64_t raw = kavel::lidar::ReadBigEndian(bytes.data(), bytes.size());
  if (type.is_exact) {
    return DecimalNumber<double>(ExactText(type, raw, coefficient));
  }
  const double scale = AsWritten(coefficient);
  if (type.kind == ValueKind::kReal) {
    return scale * (type.size == sizeof(double)
                        ? kavel::lidar::DoubleOf(raw)
                        : static_cast<double>(kavel::lidar::FloatOf(static_cast<uint32_t>(raw))));
  }
  return scale * (type.is_signed
                      ? static_cast<double>(kavel::lidar::SignExtended(raw, bytes.size()))
                      : static_cast<double>(raw));
}

bool IsWithinRange(const VarInfo& var, const Bytes& bytes, float coefficient) {
  const std::optional<double> shown = ShownNumber(*var.value_type, bytes, coefficient);
  if (!shown) {
    return true;
  }
  const bool has_range = var.range_min != 0 || var.range_max != 0;
  if (!has_range || (var.type == kSwitch && *shown == 0)) {
    return std::isfinite(*shown);
  }
  // The ends themselves may fall between two steps of the device; the exact types know better.
  const double slack = var.value_type->is_exact ? 0 : std::fabs(AsWritten(coefficient)) / 2;
  return *shown >= var.range_min - slack && *shown <= var.range_max + slack;
}

bool IsAnOption(const VarInfo& var, const Bytes& bytes) {
  Bytes encoded;
  std::string error;
  return std::any_of(var.options.begin(), var.options.end(), [&](const Option& option) {
    return EncodeValueText(var, std::to_string(option.value), &encoded, &error) && encoded == bytes;
  });
}

}  // namespace

bool IsAcceptableValue(const VarInfo& var, const Bytes& bytes) {
  const bool is_choice = var.type == kChoice || var.type == kTallChoice;
  if (is_choice) {
    return IsAnOption(var, bytes);
  }
  // A client that sends back what it read has the one scale, one that encodes anew the other.
  return IsWithinRange(var, bytes, var.coefficient) ||
         IsWithinRange(var, bytes, var.set_coefficient);
}
