#include "variables/command_code.h"

#include <cerrno>
#include <cstdlib>
#include <limits>
#include <optional>
#include <stdexcept>

#include "variables/hex_cell.h"
#include "variables/number_text.h"

namespace {

// As std::stoi with automatic base: white space before the number and anything behind it are let
// through.
int32_t IntegerOf(const std::string& text) {
  char* end = nullptr;
  errno = 0;
  const long value = std::strtol(text.c_str(), &end, 0);
  if (end == text.c_str()) {
    throw std::invalid_argument("invalid stoi argument");
  }
  if (errno == ERANGE || value < std::numeric_limits<int32_t>::min() ||
      value > std::numeric_limits<int32_t>::max()) {
    throw std::out_of_range("stoi argument out of range");
  }
  return static_cast<int32_t>(value);
}

}  // namespace

WireCommand WireCommandOf(const std::string& text, const std::vector<uint8_t>& fixed_payload) {
  const int32_t value = IntegerOf(text);
  if (text.size() < kLongCommandTextLength) {
    return {static_cast<uint8_t>(value), fixed_payload};
  }
  return LongCommandOf(text, fixed_payload);
}

WireCommand LongCommandOf(const std::string& text, const std::vector<uint8_t>& fixed_payload) {
  std::optional<std::vector<uint8_t>> payload = HexPairs(WithoutHexPrefix(text));
  if (!payload || payload->empty()) {
    throw std::invalid_argument("invalid stoi argument");
  }
  payload->insert(payload->end(), fixed_payload.begin(), fixed_payload.end());
  return {kLongCommandCode, std::move(*payload)};
}

std::string CommandKey(const std::string& text) {
  try {
    const WireCommand command = WireCommandOf(text);
    std::string key(1, static_cast<char>(command.code));
    return key.append(command.payload.begin(), command.payload.end());
  } catch (const std::logic_error&) {
    return "no command: " + text;
  }
}

bool IsCommand(const std::string& text, uint8_t code) {
  try {
    return text.size() < kLongCommandTextLength && WireCommandOf(text).code == code;
  } catch (const std::logic_error&) {
    return false;
  }
}
