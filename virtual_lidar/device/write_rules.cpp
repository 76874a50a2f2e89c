#include "device/write_rules.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>

#include "CmxClient/fov_command.h"
#include "Wire/big_endian.h"
#include "device/value_encoder.h"

namespace {

using Bytes = std::vector<uint8_t>;

// The number that stands on the wire; nothing for types that are none.
std::optional<double> WireNumber(const ValueType& type, const Bytes& bytes) {
  if (!type.is_number() || bytes.empty() || bytes.size() > 8) {
    return std::nullopt;
  }
  const uint64_t raw = kavel::lidar::ReadBigEndian(bytes.data(), bytes.size());
  if (type.kind == ValueKind::kReal) {
    if (bytes.size() != static_cast<size_t>(type.size)) {
      return std::nullopt;
    }
    return type.size == sizeof(double)
               ? kavel::lidar::DoubleOf(raw)
               : static_cast<double>(kavel::lidar::FloatOf(static_cast<uint32_t>(raw)));
  }
  return type.is_signed ? static_cast<double>(kavel::lidar::SignExtended(raw, bytes.size()))
                        : static_cast<double>(raw);
}

bool IsWithin(const VarInfo& var, double wire, float coefficient) {
  const double scale = static_cast<double>(coefficient);
  const double shown = wire * scale;
  // The ends themselves may fall between two steps of the device.
  const double slack = std::fabs(scale) / 2;
  return shown >= var.range_min - slack && shown <= var.range_max + slack;
}

bool IsWithinRange(const VarInfo& var, double wire) {
  if (var.range_min == 0 && var.range_max == 0) {
    return true;
  }
  if (var.type == kSwitch && wire == 0) {
    return true;
  }
  // A client that sends back what it read has the one scale, one that encodes anew the other.
  return IsWithin(var, wire, var.coefficient) || IsWithin(var, wire, var.set_coefficient);
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
  const std::optional<double> wire = WireNumber(*var.value_type, bytes);
  return !wire || (std::isfinite(*wire) && IsWithinRange(var, *wire));
}

bool IsAcceptableFovTable(const Bytes& bytes) {
  std::array<float, 10> degrees = {};
  uint8_t mode = 0;
  return kavel::lidar::ParseFovTable(bytes, &degrees, &mode) &&
         std::all_of(degrees.begin(), degrees.end(),
                     [](float angle) { return angle >= 0 && angle <= 360; });
}
