#pragma once

#include <QFontMetricsF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <vector>

#include "plot/plot_axis.h"
#include "plot/plot_columns.h"
#include "plot/plot_data.h"

/// What is to be seen.
struct PlotScene {
  const PlotData* data = nullptr;  ///< null: nothing is drawn but the time
  TimeSpan span;
  /// Samples further apart than this are not joined.
  double bridge_ms = std::numeric_limits<double>::infinity();
  int selected = -1;                ///< the value that stands out; -1 for none
  double cursor_ms = kNothingRead;  ///< a time; NaN for none
};

/// The line of one value.
struct PlotLine {
  int row = 0;
  /// One for each column of device pixels.
  std::vector<PlotColumn> columns;
};

/// The values of one unit share a lane with an axis of its own: degrees and volts have no common
/// scale.
struct PlotLane {
  QString unit;
  QRectF area;
  PlotAxis axis;
  std::vector<PlotTick> ticks;  ///< none where there is nothing to see
  std::vector<PlotLine> lines;
};

/// Where everything lies.
struct PlotLayout {
  QSizeF size;
  QRectF area;  ///< of all lanes
  PlotAxis time;
  std::vector<PlotTick> time_ticks;
  std::vector<PlotLane> lanes;
  double label_room = 0;  ///< of the labels of the values

  /// The drawn value whose line passes nearest to `point`; -1 when there is none.
  int NearestRow(const PlotScene& scene, const QPointF& point) const;
};

/// Lays the scene out in an area of `size`; the texts are set in a font with `metrics`, and
/// `device_scale` device pixels make up one unit of length. `label_room` is that of the last
/// layout, or 0; where it is right, the work is half as much.
PlotLayout LayOut(const PlotScene& scene, const QSizeF& size, const QFontMetricsF& metrics,
                  double device_scale, double label_room);
