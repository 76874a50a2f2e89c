#include "plot/plot_series.h"

#include <algorithm>
#include <cmath>

namespace {

// How many samples that were given up may lie around before the rest is moved up. Moving a few
// thousand at a time costs next to nothing, and the samples need no wrapping around.
constexpr size_t kLeftovers = PlotSeries::kCapacity / 8;

}  // namespace

void PlotSeries::Append(int64_t time_ms, double value) {
  while (size() > 0 && times_.back() >= time_ms) {
    times_.pop_back();
    values_.pop_back();
  }
  times_.push_back(time_ms);
  values_.push_back(value);
  if (size() > kCapacity) {
    ++first_;
  }
  if (first_ == kLeftovers) {
    times_.erase(times_.begin(), times_.begin() + kLeftovers);
    values_.erase(values_.begin(), values_.begin() + kLeftovers);
    first_ = 0;
  }
}

void PlotSeries::Clear() { *this = PlotSeries(); }

size_t PlotSeries::NotBefore(double time_ms) const {
  const auto first = static_cast<int64_t>(std::ceil(time_ms));
  return static_cast<size_t>(std::lower_bound(times(), times() + size(), first) - times());
}

size_t PlotSeries::After(double time_ms) const { return NotBefore(std::floor(time_ms) + 1); }

size_t PlotSeries::Nearest(double time_ms) const {
  const size_t after = NotBefore(time_ms);
  if (after == 0 || size() == 0) {
    return after;
  }
  if (after == size()) {
    return after - 1;
  }
  const double to_before = time_ms - static_cast<double>(times()[after - 1]);
  return to_before < static_cast<double>(times()[after]) - time_ms ? after - 1 : after;
}

Distribution PlotSeries::DistributionIn(const TimeSpan& span, size_t parts) const {
  Distribution result;
  const double* begin = values() + NotBefore(span.from);
  const double* end = values() + After(span.to);
  result.least = std::numeric_limits<double>::infinity();
  result.greatest = -result.least;
  double sum = 0;
  for (const double* value = begin; value < end; ++value) {
    if (std::isnan(*value)) {
      continue;
    }
    ++result.samples;
    sum += *value;
    result.least = std::min(result.least, *value);
    result.greatest = std::max(result.greatest, *value);
  }
  if (result.samples == 0) {
    return {};
  }
  result.mean = sum / static_cast<double>(result.samples);
  result.counts.resize(parts);
  const double width = (result.greatest - result.least) / static_cast<double>(parts);
  double squares = 0;
  for (const double* value = begin; value < end; ++value) {
    if (std::isnan(*value)) {
      continue;
    }
    squares += (*value - result.mean) * (*value - result.mean);
    const double part = width > 0 ? (*value - result.least) / width : 0;
    ++result.counts[std::min(static_cast<size_t>(part), parts - 1)];
  }
  result.deviation = std::sqrt(squares / static_cast<double>(result.samples));
  return result;
}
