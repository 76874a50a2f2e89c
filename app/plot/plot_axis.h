#pragma once

#include <QString>
#include <vector>

#include "plot/plot_series.h"

/// Where the values from `low` to `high` lie on the screen: `low` at pixel `low_px`, `high` at
/// `high_px`. Either direction may be the rising one; `low` and `high` differ.
struct PlotAxis {
  double low = 0;
  double high = 1;
  double low_px = 0;
  double high_px = 1;

  double ToPixel(double value) const {
    return low_px + (value - low) / (high - low) * (high_px - low_px);
  }
  double ToValue(double px) const {
    return low + (px - low_px) / (high_px - low_px) * (high - low);
  }
};

/// A mark on an axis.
struct PlotTick {
  double at = 0;
  QString label;
};

/// The values between `least` and `greatest` made a little wider, so that both ends are round
/// numbers and apart from each other. `most` is about how many steps there may be, at least 1.
struct RoundRange {
  double low = 0;
  double high = 1;
  double step = 1;  ///< 1, 2 or 5 times a power of ten
};
RoundRange RoundRangeOf(double least, double greatest, int most);

/// Marks at the multiples of the step, with just the decimals that tell them apart.
std::vector<PlotTick> ValueTicks(const RoundRange& range);

/// Marks at round times of the local clock (full seconds, minutes, hours or days), at most `most`;
/// with seconds only where they differ, and with the day at midnight.
std::vector<PlotTick> TimeTicks(const TimeSpan& span, int most);

/// A time of the local clock with seconds, and with the day when that is not today.
QString TimeText(double time_ms);
