#include "device/measurement.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "Wire/big_endian.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr double kPi = 3.14159265358979323846;

/// Numbers that follow from what they are for, and look as if they did not.
class Chance {
 public:
  Chance(uint32_t seed, uint32_t variable, uint32_t second)
      : state_((uint64_t{seed} << 32 | variable) * 0x9E3779B97F4A7C15U ^
               uint64_t{second} * 0xD1342543DE82EF95U) {}

  /// At least 0 and below 1.
  double Next() {
    state_ += 0x9E3779B97F4A7C15U;
    uint64_t mixed = (state_ ^ (state_ >> 30)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
    return static_cast<double>((mixed ^ (mixed >> 31)) >> 11) * 0x1p-53;
  }

 private:
  uint64_t state_;
};

bool IsCounter(const VarInfo& var) {
  return var.value_type->kind == ValueKind::kInteger && !var.value_type->is_signed &&
         var.offset >= 4 && var.unit.empty() && var.coefficient == 1.0F;
}

/// The number at a second, when it starts at `start` and `step` is the least that can be seen.
double NumberAt(uint32_t seed, uint32_t second, const VarInfo& var, double start, double step) {
  constexpr uint32_t kEver = UINT32_MAX;
  Chance character(seed, var.table_position, kEver);
  Chance moment(seed, var.table_position, second);
  if (IsCounter(var)) {
    // From one in twenty seconds to a hundred a second.
    return start + std::floor(second * 0.05 * std::pow(2000.0, character.Next()));
  }
  const double span = std::max(std::abs(start) * 0.02, 4 * step);
  const double period_s = 120 + 480 * character.Next();
  const double drift = span * std::sin(2 * kPi * (second / period_s + character.Next()));
  const double noise = 0.15 * span * (moment.Next() + moment.Next() + moment.Next() - 1.5);
  const bool spikes = moment.Next() < 1.0 / 150;
  const double spike = spikes ? (moment.Next() < 0.5 ? -3 : 3) * span : 0;
  return start + drift + noise + spike;
}

Bytes IntegerAt(uint32_t seed, uint32_t second, const VarInfo& var, const Bytes& start) {
  const auto bits = static_cast<int>(8 * start.size());
  const uint64_t held = kavel::lidar::ReadBigEndian(start.data(), start.size());
  // Wider ones would lose their last digits here, and no sensor has them.
  if (bits == 64 && !IsCounter(var)) {
    return start;
  }
  const bool is_signed = var.value_type->is_signed;
  const bool is_negative = is_signed && (held >> (bits - 1)) != 0;
  const double number = static_cast<double>(held) - (is_negative ? std::ldexp(1.0, bits) : 0);
  const double most = std::ldexp(1.0, is_signed ? bits - 1 : std::min(bits, 53)) - 1;
  const double least = is_signed ? -most - 1 : 0;
  const double now = std::clamp(std::round(NumberAt(seed, second, var, number, 1)), least, most);
  Bytes bytes;
  kavel::lidar::AppendBigEndian(bytes, static_cast<uint64_t>(static_cast<int64_t>(now)),
                                start.size());
  return bytes;
}

template <typename Real, typename Bits>
Bytes RealAt(uint32_t seed, uint32_t second, const VarInfo& var, const Bytes& start) {
  Bits bits = static_cast<Bits>(kavel::lidar::ReadBigEndian(start.data(), start.size()));
  Real number = 0;
  std::memcpy(&number, &bits, sizeof number);
  if (!std::isfinite(number)) {
    return start;
  }
  const double step = 0.01 / std::abs(static_cast<double>(var.coefficient));
  number = static_cast<Real>(NumberAt(seed, second, var, static_cast<double>(number), step));
  std::memcpy(&bits, &number, sizeof number);
  Bytes bytes;
  kavel::lidar::AppendBigEndian(bytes, bits, start.size());
  return bytes;
}

}  // namespace

Bytes Measurement::At(uint32_t second, const VarInfo& var, const Bytes& start) const {
  const bool is_choice = !var.options.empty() || var.type == kMonitor;
  if (seed_ == 0 || is_choice || !FillsItsPlace(var)) {
    return start;
  }
  switch (var.value_type->kind) {
    case ValueKind::kInteger:
      return IntegerAt(seed_, second, var, start);
    case ValueKind::kReal:
      return start.size() == sizeof(float) ? RealAt<float, uint32_t>(seed_, second, var, start)
                                           : RealAt<double, uint64_t>(seed_, second, var, start);
    default:
      return start;
  }
}
