#include "monitor/monitor_sample.h"

#include <array>
#include <string_view>

#include "variables/number_text.h"

namespace {

/// The seconds of "1 h 0 min 1 s".
std::optional<double> SecondsIn(std::string_view text) {
  struct Part {
    std::string_view unit;
    double seconds;
  };
  constexpr std::array<Part, 3> kParts{{{" h ", 3600}, {" min ", 60}, {" s", 1}}};
  double seconds = 0;
  for (const Part& part : kParts) {
    const size_t end = text.find(part.unit);
    const auto count = WholeNumber<uint64_t>(text.substr(0, end));
    if (end == std::string_view::npos || !count) {
      return std::nullopt;
    }
    seconds += static_cast<double>(*count) * part.seconds;
    text.remove_prefix(end + part.unit.size());
  }
  return text.empty() ? std::optional(seconds) : std::nullopt;
}

}  // namespace

std::optional<double> MonitorNumber(const std::string& text) {
  const std::optional<double> number = DecimalNumber<double>(text);
  return number ? number : SecondsIn(text);
}
