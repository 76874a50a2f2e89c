#include "plot/plot_layout.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kMargin = 12;
constexpr double kLaneGap = 20;
constexpr double kTickLength = 6;
// The room for the labels grows in steps, so that the lines do not move with every digit.
constexpr double kLabelRoomStep = 16;
constexpr double kValueTickDistance = 36;
constexpr double kTimeTickDistance = 90;

std::vector<PlotLane> LanesOf(const PlotData* data) {
  std::vector<PlotLane> lanes;
  for (int row = 0; data != nullptr && row < data->count(); ++row) {
    if (!data->IsShown(row)) {
      continue;
    }
    const QString& unit = data->NameOf(row).unit;
    auto lane = std::find_if(lanes.begin(), lanes.end(),
                             [&](const PlotLane& there) { return there.unit == unit; });
    if (lane == lanes.end()) {
      lanes.emplace_back();
      lane = lanes.end() - 1;
      lane->unit = unit;
    }
    lane->lines.emplace_back().row = row;
  }
  return lanes;
}

// The axis of a lane whose lines are there and whose place is known.
void SetAxis(PlotLane* lane) {
  PlotColumn reach;
  for (const PlotLine& line : lane->lines) {
    for (const PlotColumn& column : line.columns) {
      if (!column.empty()) {
        reach.Reach(column.least);
        reach.Reach(column.greatest);
      }
    }
  }
  RoundRange range;
  if (!reach.empty() && std::isfinite(reach.least) && std::isfinite(reach.greatest)) {
    const int most = std::max(2, static_cast<int>(lane->area.height() / kValueTickDistance));
    range = RoundRangeOf(reach.least, reach.greatest, most);
    lane->ticks = ValueTicks(range);
    if (!lane->ticks.empty() && !lane->unit.isEmpty()) {
      lane->ticks.back().label += ' ' + lane->unit;
    }
  }
  lane->axis = {range.low, range.high, lane->area.bottom(), lane->area.top()};
}

double WidestLabel(const std::vector<PlotLane>& lanes, const QFontMetricsF& metrics) {
  double widest = 0;
  for (const PlotLane& lane : lanes) {
    for (const PlotTick& tick : lane.ticks) {
      widest = std::max(widest, metrics.horizontalAdvance(tick.label));
    }
  }
  return std::ceil(widest / kLabelRoomStep) * kLabelRoomStep;
}

// On whole device pixels, so that no line is smoothed over two of them.
QRectF LaneArea(const QSizeF& size, const QFontMetricsF& metrics, double device_scale,
                double label_room) {
  const auto whole = [device_scale](double length) {
    return std::round(length * device_scale) / device_scale;
  };
  const double left = whole(kMargin + label_room + kTickLength);
  const double top = whole(kMargin + metrics.height() / 2);
  const double right = whole(size.width() - kMargin);
  const double bottom = whole(size.height() - kMargin - metrics.height() - kTickLength);
  return {QPointF(left, top), QPointF(std::max(right, left + 1), std::max(bottom, top + 1))};
}

PlotLayout LayOutWithRoom(const PlotScene& scene, const QSizeF& size, const QFontMetricsF& metrics,
                          double device_scale, double label_room) {
  PlotLayout layout;
  layout.size = size;
  layout.label_room = label_room;
  layout.lanes = LanesOf(scene.data);
  layout.area = LaneArea(size, metrics, device_scale, label_room);
  layout.time = {scene.span.from, scene.span.to, layout.area.left(), layout.area.right()};
  if (scene.data != nullptr && scene.data->samples() > 0) {
    layout.time_ticks =
        TimeTicks(scene.span, static_cast<int>(layout.area.width() / kTimeTickDistance));
  }
  const auto lanes = static_cast<double>(layout.lanes.size());
  const double lane_height =
      std::max(1.0, (layout.area.height() - (lanes - 1) * kLaneGap) / std::max(lanes, 1.0));
  const int columns = static_cast<int>(std::lround(layout.area.width() * device_scale));
  double lane_top = layout.area.top();
  for (PlotLane& lane : layout.lanes) {
    lane.area = QRectF(layout.area.left(), lane_top, layout.area.width(), lane_height);
    lane_top += lane_height + kLaneGap;
    for (PlotLine& line : lane.lines) {
      line.columns =
          ColumnsOf(scene.data->SeriesOf(line.row), scene.span, columns, scene.bridge_ms);
    }
    SetAxis(&lane);
  }
  return layout;
}

}  // namespace

PlotLayout LayOut(const PlotScene& scene, const QSizeF& size, const QFontMetricsF& metrics,
                  double device_scale, double label_room) {
  PlotLayout layout = LayOutWithRoom(scene, size, metrics, device_scale, label_room);
  const double needed = WidestLabel(layout.lanes, metrics);
  const bool fits = needed <= label_room && needed + 2 * kLabelRoomStep > label_room;
  return fits ? layout : LayOutWithRoom(scene, size, metrics, device_scale, needed);
}

int PlotLayout::NearestRow(const PlotScene& scene, const QPointF& point) const {
  int nearest = -1;
  double least = std::numeric_limits<double>::infinity();
  for (const PlotLane& lane : lanes) {
    for (const PlotLine& line : lane.lines) {
      const PlotSeries& series = scene.data->SeriesOf(line.row);
      const size_t sample = series.Nearest(time.ToValue(point.x()));
      const double value = sample < series.size() ? series.values()[sample] : kNothingRead;
      const double distance = std::abs(lane.axis.ToPixel(value) - point.y());
      if (distance < least) {
        nearest = line.row;
        least = distance;
      }
    }
  }
  return nearest;
}
