#include "plot/plot_columns.h"

#include <algorithm>
#include <cmath>

namespace {

// Spreads lines between two samples over the columns that they cross.
class Joiner {
 public:
  Joiner(const PlotSeries& series, const TimeSpan& span, std::vector<PlotColumn>& columns)
      : series_(series),
        span_(span),
        columns_(columns),
        width_ms_(span.length() / static_cast<double>(columns.size())) {}

  // The line from sample `after - 1` to sample `after`, as far as it lies inside the span.
  void Join(size_t after) {
    const double t0 = static_cast<double>(series_.times()[after - 1]);
    const double t1 = static_cast<double>(series_.times()[after]);
    const double v0 = series_.values()[after - 1];
    const double slope = (series_.values()[after] - v0) / (t1 - t0);
    const double from = std::max(t0, span_.from);
    const double to = std::min(t1, span_.to);
    const size_t last = ColumnOf(to);
    for (size_t column = ColumnOf(from); column <= last; ++column) {
      const double left = std::max(from, span_.from + static_cast<double>(column) * width_ms_);
      const double right = std::min(to, span_.from + static_cast<double>(column + 1) * width_ms_);
      columns_[column].Reach(v0 + (left - t0) * slope);
      columns_[column].Reach(v0 + (right - t0) * slope);
    }
  }

  size_t ColumnOf(double time_ms) const {
    const auto column = static_cast<size_t>((time_ms - span_.from) / width_ms_);
    return std::min(column, columns_.size() - 1);
  }

  double EndOf(size_t column) const {
    return column + 1 == columns_.size() ? span_.to
                                         : span_.from + static_cast<double>(column + 1) * width_ms_;
  }

 private:
  const PlotSeries& series_;
  const TimeSpan& span_;
  std::vector<PlotColumn>& columns_;
  double width_ms_;
};

}  // namespace

bool AreJoined(const PlotSeries& series, size_t after, double bridge_ms) {
  return after > 0 && after < series.size() && !std::isnan(series.values()[after - 1]) &&
         !std::isnan(series.values()[after]) &&
         static_cast<double>(series.times()[after] - series.times()[after - 1]) <= bridge_ms;
}

std::vector<PlotColumn> ColumnsOf(const PlotSeries& series, const TimeSpan& span, int count,
                                  double bridge_ms) {
  std::vector<PlotColumn> columns(static_cast<size_t>(std::max(count, 0)));
  if (columns.empty() || !(span.length() > 0)) {
    return columns;
  }
  Joiner joiner(series, span, columns);
  const int64_t* times = series.times();
  const double* values = series.values();
  const size_t end = series.After(span.to);
  size_t sample = series.NotBefore(span.from);
  while (sample < end) {
    const size_t column = joiner.ColumnOf(static_cast<double>(times[sample]));
    const auto column_end = static_cast<int64_t>(std::ceil(joiner.EndOf(column)));
    if (AreJoined(series, sample, bridge_ms)) {
      joiner.Join(sample);
    }
    PlotColumn reach = columns[column];
    // The first sample is inside whatever rounding says, so that this loop always goes on.
    do {
      reach.Reach(values[sample]);
    } while (++sample < end && times[sample] < column_end);
    columns[column] = reach;
  }
  if (AreJoined(series, end, bridge_ms)) {
    joiner.Join(end);
  }
  return columns;
}
