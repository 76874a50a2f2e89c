#include "plot/plot_view.h"

#include <algorithm>

void PlotView::SetExtent(const TimeSpan& extent) {
  extent_ = extent;
  if (following_) {
    Follow(true);
  }
}

void PlotView::Zoom(double factor, double anchor) {
  const double length =
      std::clamp(span_.length() * factor, kLeastLength, std::max(extent_.length(), kMostLength));
  if (following_) {
    anchor = 1;
  }
  Place(span_.from + (span_.length() - length) * anchor, length);
}

void PlotView::Pan(double share) { Place(span_.from + share * span_.length(), span_.length()); }

void PlotView::ShowLength(double length_ms) { Place(span_.to - length_ms, length_ms); }

void PlotView::ShowAll() { Place(extent_.from, std::max(extent_.length(), kLeastLength)); }

void PlotView::Follow(bool on) {
  following_ = on;
  if (on) {
    span_ = {extent_.to - span_.length(), extent_.to};
  }
}

// Where the samples take up less than the view, they stand at its right edge.
void PlotView::Place(double from, double length) {
  const double last_start = extent_.to - length;
  from = std::min(std::max(from, std::min(extent_.from, last_start)), last_start);
  following_ = from >= last_start;
  span_ = {from, from + length};
}
