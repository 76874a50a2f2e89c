#pragma once

#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

/// A variable whose values can be drawn over time.
struct MonitorVariable {
  std::string name;  ///< without the unit; UTF-8
  std::string unit;  ///< empty without one; UTF-8
};

/// How old a value may be to count as fresh: a page that a slow lidar answers in pieces is one
/// sample all the same.
inline constexpr std::chrono::seconds kFreshFor{3};

/// What one variable was at one time.
struct MonitorValue {
  double number = std::numeric_limits<double>::quiet_NaN();  ///< as shown; NaN: there is none
  /// The lidar told it for this sample, or a moment (kFreshFor) before. A value that is not fresh
  /// is an earlier one: shown in grey, and a gap in a curve.
  bool fresh = false;

  bool has_number() const { return !std::isnan(number); }
};

/// One reading of the monitor page, or one line of a recording.
struct MonitorSample {
  int64_t time_ms = 0;               ///< since 1970 in UTC; shown in local time
  std::vector<MonitorValue> values;  ///< one for each variable, in their order
};

/// The number that a shown text means: a decimal number, or the seconds of a duration
/// ("1 h 0 min 1 s"). Nothing for any other text. Does not depend on the user's language.
std::optional<double> MonitorNumber(const std::string& text);
