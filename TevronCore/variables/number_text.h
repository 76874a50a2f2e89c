#pragma once

#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Numbers to and from text, whatever locale the user has chosen: a QCoreApplication makes the C
// library follow it, and "0.5" would then no longer be a half.

/// The text without blanks, tabs, carriage returns and line feeds at its ends.
std::string_view Trim(std::string_view text);

/// The text without a leading "0x" or "0X".
std::string_view WithoutHexPrefix(std::string_view text);

/// A whole number and nothing else ("-40", "12", in base 16 "2a"; no prefix, no "+"); nothing when
/// it does not fit.
template <typename Integer = int32_t>
std::optional<Integer> WholeNumber(std::string_view text, int base = 10) {
  Integer value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  return error == std::errc() && end == text.data() + text.size() ? std::optional(value)
                                                                  : std::nullopt;
}

/// A finite decimal number and nothing else ("0.01", "1e-3").
template <typename Real = float>
std::optional<Real> DecimalNumber(std::string_view text) {
  Real value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool is_number = error == std::errc() && end == text.data() + text.size();
  return is_number && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

/// The same with blanks around it and "+" before it, as users type numbers.
std::optional<double> SignedDecimal(std::string_view text);

/// Outcome of ToFloat and ToDouble; named after the exceptions of std::stof.
enum class Conversion { kDone, kInvalidArgument, kOutOfRange };

/// Accept and refuse exactly what std::stof and std::stod do in the "C" locale: leading white space
/// is skipped, what follows the number is ignored, hexadecimal numbers, "inf" and "nan" are read,
/// and both overflow and loss of precision near 0 are out of range.
Conversion ToFloat(const std::string& text, float* value);
Conversion ToDouble(const std::string& text, double* value);

/// Fixed-point notation with two decimals, "." between.
std::string FixedText(double value);

/// Shortest decimal text that gives the same single-precision number: "0.1", "905".
std::string ShortText(float value);

/// The double closest to the number's shortest decimal text: 0.1F becomes 0.1, not 0.10000000149.
/// Scale factors are kept in single precision; products with large integers show the difference.
double AsWritten(float value);
