#include "variables/input_problem.h"

#include <regex>
#include <stdexcept>

#include "variables/number_text.h"

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

std::string InputProblem(const ValueType& type, int32_t range_min, int32_t range_max,
                         const std::string& text) {
  if (type.kind == ValueKind::kAddress) {
    return IsAddressText(text) ? "" : "An address like 192.168.1.201";
  }
  if (type.kind == ValueKind::kMac) {
    return IsMacText(text) ? "" : "Six pairs like AA:BB:CC:DD:EE:FF";
  }
  if (!type.is_number()) {
    return {};
  }
  const std::optional<double> number = SignedDecimal(text);
  if (!number) {
    return "A number is needed";
  }
  const bool has_range = range_min != 0 || range_max != 0;
  const bool is_within = type.is_exact ? *number >= range_min && *number <= range_max
                                       : IsWithin(text, range_min, range_max);
  return has_range && !is_within
             ? "Outside " + std::to_string(range_min) + " to " + std::to_string(range_max)
             : "";
}
