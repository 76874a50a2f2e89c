#pragma once

#include <limits>
#include <vector>

#include "plot/plot_series.h"

/// What the line of a series covers in one column of pixels.
struct PlotColumn {
  double least = std::numeric_limits<double>::infinity();
  double greatest = -std::numeric_limits<double>::infinity();

  /// Whether there is no line in the column.
  bool empty() const { return least > greatest; }
  /// Makes the column reach to `value`; what was not read changes nothing.
  void Reach(double value) {
    least = value < least ? value : least;
    greatest = value > greatest ? value : greatest;
  }
};

/// Whether a line leads from sample `after - 1` to sample `after`: both were read, and no more than
/// `bridge_ms` lie between them.
bool AreJoined(const PlotSeries& series, size_t after, double bridge_ms);

/// The line through the samples of `series` over `span`, cut into `count` columns of equal width.
/// Every sample counts, however many fall into one column, so that no spike is lost; a line that
/// only passes through the span is there, too. One pass over the samples of the span.
std::vector<PlotColumn> ColumnsOf(const PlotSeries& series, const TimeSpan& span, int count,
                                  double bridge_ms);
