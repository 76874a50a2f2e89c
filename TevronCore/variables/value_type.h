#pragma once

#include <cstdint>
#include <string_view>

/// How the bytes of a value are meant. Whoever treats types differently switches over this.
enum class ValueKind {
  kUnknown,   ///< the table does not say what the value means: neither shown nor changed
  kInteger,   ///< big-endian, 1, 2, 4 or 8 bytes
  kReal,      ///< IEEE 754, 4 or 8 bytes
  kText,      ///< characters; zero bytes at the end are padding
  kRaw,       ///< bytes without a text form
  kAddress,   ///< IPv4
  kMac,       ///< hardware address
  kDuration,  ///< a count of seconds of any length up to 8 bytes
};

/// A type that variable tables may name.
struct ValueType {
  std::string_view name;
  ValueKind kind = ValueKind::kUnknown;
  int32_t size = 0;        ///< Bytes of a value; 0: the table says.
  bool is_signed = false;  ///< Of kInteger.
  bool has_input = false;  ///< Whether a text that the user types can be encoded.
  bool is_exact = false;   ///< Of kInteger: no rounding on the way, see exact_number.h.

  /// Whether values are numbers that a range and a coefficient mean something for.
  bool is_number() const { return kind == ValueKind::kInteger || kind == ValueKind::kReal; }
};

/// What a name that is no type means.
inline constexpr ValueType kUnknownType;

/// The type with exactly this name, else kUnknownType.
const ValueType& ValueTypeOf(std::string_view name);
