#pragma once

#include "plot/plot_series.h"

/// Which part of the recorded time is in view. While it follows, the newest sample is at the right
/// edge; panning and zooming into the past stop that, and coming back to the end starts it again.
class PlotView {
 public:
  static constexpr double kLeastLength = 5000;
  static constexpr double kFirstLength = 60000;
  /// What can be seen at once even while there is less to see.
  static constexpr double kMostLength = 3600000;

  /// Tells from when to when there are samples; both 0 without any.
  void SetExtent(const TimeSpan& extent);
  const TimeSpan& extent() const { return extent_; }

  const TimeSpan& span() const { return span_; }
  bool following() const { return following_; }

  /// Makes what is in view `factor` times as long; the time at `anchor` (0 at the left edge, 1 at
  /// the right one) stays where it is, and the newest sample at the right edge while it follows.
  void Zoom(double factor, double anchor);
  /// Moves by `share` of the length in view, into the past when negative, as far as there is
  /// anything to see.
  void Pan(double share);
  /// Shows `length_ms` up to where the view ends now.
  void ShowLength(double length_ms);
  void ShowAll();
  void Follow(bool on);

 private:
  void Place(double from, double length);

  TimeSpan extent_;
  TimeSpan span_{0, kFirstLength};
  bool following_ = true;
};
