#include "variables/host_port.h"

#include <QString>
#include <algorithm>
#include <cstdlib>

#include "variables/number_text.h"

namespace {

constexpr unsigned long long kLowestPort = 1024;
constexpr unsigned long long kHighestPort = 65535;

bool IsAny(std::string_view text) {
  constexpr std::string_view kAny = "ANY";
  return text.size() == kAny.size() &&
         std::equal(text.begin(), text.end(), kAny.begin(),
                    [](char a, char b) { return (a >= 'a' && a <= 'z' ? a - 'a' + 'A' : a) == b; });
}

}  // namespace

bool ParsePort(const std::string& text, uint16_t* port) {
  bool is_number = false;
  const uint16_t number = QString::fromStdString(text).trimmed().toUShort(&is_number, 10);
  if (!is_number || number == 0) {
    return false;
  }
  *port = number;
  return true;
}

bool ParseHostPort(const std::string& text, uint16_t* port, std::string* error) {
  const auto fail = [error](const char* message) {
    if (error != nullptr) {
      *error = message;
    }
    return false;
  };
  if (port == nullptr) {
    return fail("out_port is null");
  }
  const std::string trimmed(Trim(text));
  if (trimmed.empty()) {
    return fail("Host port is empty");
  }
  if (IsAny(trimmed)) {
    *port = 0;
    return true;
  }
  char* end = nullptr;
  // A negative text wraps, mostly to a number above the range but not always; one that overflows
  // is above it.
  const unsigned long number = std::strtoul(trimmed.c_str(), &end, 10);
  if (end == trimmed.c_str() || *end != '\0') {
    return fail("Host port must be ANY or an integer");
  }
  if (trimmed.front() == '-' || number < kLowestPort || number > kHighestPort) {
    return fail("Host port must be in [1024, 65535]");
  }
  *port = static_cast<uint16_t>(number);
  return true;
}
