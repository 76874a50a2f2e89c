#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

/// Stands where nothing was read.
constexpr double kNothingRead = std::numeric_limits<double>::quiet_NaN();

/// A stretch of time in milliseconds since 1970 (UTC); both ends belong to it.
struct TimeSpan {
  double from = 0;
  double to = 0;

  double length() const { return to - from; }
};

/// How values are distributed. Without any value, everything is 0.
struct Distribution {
  size_t samples = 0;
  double mean = 0;
  double deviation = 0;  ///< standard deviation of all the values, not an estimate from a few
  double least = 0;
  double greatest = 0;
  /// How many values lie in each of the equal parts from `least` to `greatest`.
  std::vector<size_t> counts;
};

/// The samples of one value, oldest first: the last kCapacity that were appended. They lie one
/// behind another in memory. Not thread-safe.
class PlotSeries {
 public:
  static constexpr size_t kCapacity = 100000;

  /// Adds a sample; `value` may be kNothingRead. Samples that are not older than the new one go:
  /// the clock was set back, and times have to ascend.
  void Append(int64_t time_ms, double value);
  void Clear();

  size_t size() const { return times_.size() - first_; }
  /// The samples from the oldest on; valid until the next change.
  const int64_t* times() const { return times_.data() + first_; }
  const double* values() const { return values_.data() + first_; }

  /// The first sample that is not before `time_ms`; size() when there is none.
  size_t NotBefore(double time_ms) const;
  /// The first sample that is after `time_ms`; size() when there is none.
  size_t After(double time_ms) const;
  /// The sample nearest in time; size() when there is none at all.
  size_t Nearest(double time_ms) const;

  /// Of the values inside `span`, in `parts` (at least 1) equal parts.
  Distribution DistributionIn(const TimeSpan& span, size_t parts) const;

 private:
  size_t first_ = 0;  ///< what lies before it has been given up
  std::vector<int64_t> times_;
  std::vector<double> values_;
};
