#include "variables/input_problem.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <regex>
#include <stdexcept>
#include <vector>

#include "Wire/big_endian.h"
#include "variables/exact_number.h"
#include "variables/number_text.h"
#include "variables/str_parser.h"

namespace {

// As the check of a page: the whole number at the beginning of the text counts.
bool IsWithin(const std::string& text, int32_t lowest, int32_t highest) {
  try {
    const int number = std::stoi(text);
    return number >= lowest && number <= highest;
  } catch (const std::logic_error&) {
    return false;
  }
}

using Kind = InputProblem::Kind;

bool HasRange(const InputRule& rule) { return rule.range_min != 0 || rule.range_max != 0; }

// Why a text that is no number, or none that the type holds, has no bytes.
InputProblem Refusal(const InputRule& rule, const std::string& text, const std::string& reason) {
  if (rule.type->kind == ValueKind::kAddress) {
    return {Kind::kImpossible, "An address like 192.168.1.201"};
  }
  if (rule.type->kind == ValueKind::kMac) {
    return {Kind::kImpossible, "Six pairs like AA:BB:CC:DD:EE:FF"};
  }
  const bool is_number = SignedDecimal(text).has_value();
  if (!is_number) {
    const std::string wanted = HasRange(rule) ? "A number from " + RangeText(rule) : "A number";
    const bool has_comma = text.find(',') != std::string::npos;
    return {Kind::kImpossible, wanted + (has_comma ? ", point as decimal sign" : " is needed")};
  }
  if (HasRange(rule) && !IsWithin(text, rule.range_min, rule.range_max)) {
    return {Kind::kImpossible, "Outside " + RangeText(rule)};
  }
  if (rule.type->is_exact) {
    const size_t colon = reason.find(": ");  // behind the name of the parser
    return {Kind::kImpossible, reason.substr(colon == std::string::npos ? 0 : colon + 2)};
  }
  return {Kind::kImpossible, TakesOnlyZero(*rule.type)
                                 ? "Only 0 can be saved"
                                 : "Outside " + TypeRange(*rule.type, rule.set_coefficient)};
}

// The number that the bytes are to the device.
double NumberOf(const ValueType& type, const std::vector<uint8_t>& bytes) {
  const uint64_t bits = kavel::lidar::ReadBigEndian(bytes.data(), bytes.size());
  if (type.kind == ValueKind::kReal) {
    return type.size == sizeof(double)
               ? kavel::lidar::DoubleOf(bits)
               : static_cast<double>(kavel::lidar::FloatOf(static_cast<uint32_t>(bits)));
  }
  return static_cast<double>(type.is_signed ? kavel::lidar::SignExtended(bits, bytes.size())
                                            : static_cast<int64_t>(bits));
}

// What the bytes of a number mean, where that is not what the text says. A real may differ in the
// digits that its type does not have; a quotient beyond the type is infinite.
InputProblem Rounding(const InputRule& rule, const std::string& text,
                      const std::vector<uint8_t>& bytes) {
  if (!rule.type->is_number() || rule.type->is_exact) {
    return {};
  }
  const double number = NumberOf(*rule.type, bytes);
  const double stored = number * AsWritten(rule.set_coefficient);
  const double typed = SignedDecimal(text).value_or(stored);
  const double alike = rule.type->kind == ValueKind::kReal ? 1e-6 : 1e-9;
  if (std::fabs(stored - typed) <= alike * std::max(1.0, std::fabs(typed))) {
    return {};
  }
  const bool is_whole = rule.type->kind == ValueKind::kInteger && rule.set_coefficient == 1.0F;
  return {Kind::kRounded,
          "Would be stored as " + (is_whole ? std::to_string(static_cast<int64_t>(number))
                                            : ShortText(static_cast<float>(stored)))};
}

bool IsWellWritten(const InputRule& rule, const std::string& text) {
  switch (rule.type->kind) {
    case ValueKind::kAddress:
      return IsAddressText(text);
    case ValueKind::kMac:
      return IsMacText(text);
    default:
      return SignedDecimal(text).has_value();
  }
}

}  // namespace

bool IsAddressText(const std::string& text) {
  static const std::regex pattern(
      R"(^((25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\.){3}(25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)$)");
  return std::regex_match(text, pattern);
}

bool IsMacText(const std::string& text) {
  static const std::regex pattern("^([0-9A-Fa-f]{2}[:]){5}([0-9A-Fa-f]{2})$");
  return std::regex_match(text, pattern);
}

bool IsOutsideRange(const InputRule& rule, const std::string& text) {
  const bool is_off = rule.is_switch && text == "0";
  if (is_off || !HasRange(rule) || !rule.type->is_number()) {
    return false;
  }
  if (!rule.type->is_exact) {
    return !IsWithin(text, rule.range_min, rule.range_max);
  }
  const std::optional<double> number = SignedDecimal(text);
  return !number || *number < rule.range_min || *number > rule.range_max;
}

std::string RangeText(const InputRule& rule) {
  return std::to_string(rule.range_min) + " to " + std::to_string(rule.range_max);
}

bool TakesOnlyZero(const ValueType& type) {
  return type.kind == ValueKind::kInteger && !type.is_signed && type.size >= 4 && !type.is_exact;
}

std::string TypeRange(const ValueType& type, float set_coefficient) {
  if (type.is_exact) {
    return ExactRange(type, set_coefficient);
  }
  const int bits = 8 * type.size - (type.is_signed ? 1 : 0);
  const double factor = AsWritten(set_coefficient);
  const double ends[] = {(type.is_signed ? -std::ldexp(1.0, bits) : 0) * factor,
                         (std::ldexp(1.0, bits) - 1) * factor};
  return ShortText(static_cast<float>(std::min(ends[0], ends[1]))) + " to " +
         ShortText(static_cast<float>(std::max(ends[0], ends[1])));
}

InputProblem FindInputProblem(const InputRule& rule, const std::string& text) {
  if (!rule.type->has_input) {
    return {};
  }
  std::vector<uint8_t> bytes;
  try {
    bytes = CreateStrParser(std::string(rule.type->name))->Parse(text, rule.set_coefficient);
  } catch (const std::invalid_argument& e) {
    return Refusal(rule, text, e.what());
  }
  if (!IsWellWritten(rule, text)) {
    InputProblem problem = Refusal(rule, text, "");
    problem.kind = rule.type->is_number() ? Kind::kImpossible : Kind::kUnwanted;
    return problem;
  }
  return IsOutsideRange(rule, text) ? InputProblem{Kind::kUnwanted, "Outside " + RangeText(rule)}
                                    : Rounding(rule, text, bytes);
}
