#include "plot/plot_painter.h"

#include <algorithm>
#include <cmath>

#include "plot/plot_raster.h"

namespace {

constexpr double kLineWidth = 1.5;
constexpr double kSelectedWidth = 2.5;
constexpr double kDotRadius = 2.5;
// Above and below the lanes, for lines along their edges: a whole number of device pixels.
constexpr double kLineRoom = 4;
// A column in the gap of a dash is drawn all the same where it is higher than this: no spike falls
// into a gap.
constexpr double kSpikeHeight = 6;
constexpr double kBoxPadding = 8;
constexpr double kBoxDistance = 10;

class Painting {
 public:
  Painting(QPainter* painter, const PlotScene& scene, const PlotLayout& layout,
           const PlotLook& look, double device_scale)
      : painter_(*painter), scene_(scene), layout_(layout), look_(look), scale_(device_scale) {}

  void DrawGrid();
  void DrawLines(QImage* scratch);
  void DrawCursor();

 private:
  struct BoxRow {
    QString text;
    QColor color;
    bool bold;
  };

  void DrawLine(PlotRaster* raster, double top_px, const PlotAxis& axis, const PlotLine& line);
  void DrawDot(PlotRaster* raster, int x, double top, double bottom, QRgb color);
  void DrawBox(const std::vector<BoxRow>& rows, double cursor_px);

  QPainter& painter_;
  const PlotScene& scene_;
  const PlotLayout& layout_;
  const PlotLook& look_;
  double scale_;
};

void Painting::DrawGrid() {
  const QFontMetricsF metrics(look_.font);
  painter_.setFont(look_.font);
  const double left = layout_.area.left();
  for (const PlotTick& tick : layout_.time_ticks) {
    const double x = std::floor(layout_.time.ToPixel(tick.at));
    for (const PlotLane& lane : layout_.lanes) {
      painter_.fillRect(QRectF(x, lane.area.top(), 1, lane.area.height()), look_.grid);
    }
    const double width = metrics.horizontalAdvance(tick.label);
    const double text_x = std::clamp(x - width / 2, left, layout_.area.right() - width);
    painter_.setPen(look_.text);
    painter_.drawText(QPointF(text_x, layout_.area.bottom() + 6 + metrics.ascent()), tick.label);
  }
  for (const PlotLane& lane : layout_.lanes) {
    for (const PlotTick& tick : lane.ticks) {
      const double y = std::floor(lane.axis.ToPixel(tick.at));
      painter_.fillRect(QRectF(left, y, lane.area.width(), 1), look_.grid);
      painter_.drawText(QPointF(left - 6 - metrics.horizontalAdvance(tick.label),
                                y + metrics.ascent() - metrics.height() / 2),
                        tick.label);
    }
  }
}

void Painting::DrawLines(QImage* scratch) {
  const QRectF area = layout_.area.adjusted(0, -kLineRoom, 0, kLineRoom);
  PlotRaster raster(scratch, (area.size() * scale_).toSize());
  // The selected line last, so that it lies above the others.
  for (const bool selected : {false, true}) {
    for (const PlotLane& lane : layout_.lanes) {
      for (const PlotLine& line : lane.lines) {
        if ((line.row == scene_.selected) == selected) {
          DrawLine(&raster, area.top(), lane.axis, line);
        }
      }
    }
  }
  painter_.drawImage(area, *scratch);
}

void Painting::DrawLine(PlotRaster* raster, double top_px, const PlotAxis& axis,
                        const PlotLine& line) {
  const double half = (line.row == scene_.selected ? kSelectedWidth : kLineWidth) / 2;
  const QRgb color = look_.LineOf(line.row).rgb();
  const QVector<qreal> dashes = DashesOf(line.row);
  double dash_end = dashes.isEmpty() ? std::numeric_limits<double>::infinity() : dashes[0];
  int dash = 0;
  const auto count = std::min(line.columns.size(), static_cast<size_t>(raster->width()));
  for (size_t i = 0; i < count; ++i) {
    while (static_cast<double>(i) / scale_ >= dash_end) {
      dash = (dash + 1) % dashes.size();
      dash_end += dashes[dash];
    }
    const PlotColumn& column = line.columns[i];
    if (column.empty()) {
      continue;
    }
    const double top = axis.ToPixel(column.greatest) - top_px;
    const double bottom = axis.ToPixel(column.least) - top_px;
    const bool stands_alone =
        (i == 0 || line.columns[i - 1].empty()) && (i + 1 == count || line.columns[i + 1].empty());
    if (stands_alone) {
      DrawDot(raster, static_cast<int>(i), top, bottom, color);
    } else if (dash % 2 == 0 || bottom - top >= kSpikeHeight) {
      raster->Fill(static_cast<int>(i), (top - half) * scale_, (bottom + half) * scale_, color);
    }
  }
}

// A sample with nothing before and behind it: a line without length would hardly be seen.
void Painting::DrawDot(PlotRaster* raster, int x, double top, double bottom, QRgb color) {
  const int radius = static_cast<int>(std::lround(kDotRadius * scale_));
  for (int beside = -radius; beside <= radius; ++beside) {
    if (x + beside >= 0 && x + beside < raster->width()) {
      const double high = std::sqrt((radius + 0.5) * (radius + 0.5) - beside * beside);
      raster->Fill(x + beside, top * scale_ - high, bottom * scale_ + high, color);
    }
  }
}

void Painting::DrawCursor() {
  const double x = layout_.time.ToPixel(scene_.cursor_ms);
  if (!(x >= layout_.area.left() && x <= layout_.area.right())) {
    return;
  }
  painter_.setRenderHint(QPainter::Antialiasing, false);
  QPen pen(look_.text, 1);
  pen.setDashPattern({4, 4});
  painter_.setPen(pen);
  painter_.drawLine(
      QLineF(std::floor(x), layout_.area.top(), std::floor(x), layout_.area.bottom()));

  std::vector<BoxRow> rows = {{TimeText(scene_.cursor_ms), look_.text, false}};
  painter_.setRenderHint(QPainter::Antialiasing);
  painter_.setPen(Qt::NoPen);
  for (const PlotLane& lane : layout_.lanes) {
    for (const PlotLine& line : lane.lines) {
      const PlotSeries& series = scene_.data->SeriesOf(line.row);
      const PlotName& name = scene_.data->NameOf(line.row);
      const size_t sample = series.Nearest(scene_.cursor_ms);
      const double value = sample < series.size() ? series.values()[sample] : kNothingRead;
      const QString text = std::isnan(value) ? QStringLiteral("\u2014")
                                             : scene_.data->Text(line.row, value) + ' ' + lane.unit;
      rows.push_back({name.name + ' ' + text, look_.LineOf(line.row), line.row == scene_.selected});
      if (!std::isnan(value)) {
        painter_.setBrush(look_.LineOf(line.row));
        painter_.drawEllipse(QPointF(x, lane.axis.ToPixel(value)), kDotRadius + 1, kDotRadius + 1);
      }
    }
  }
  DrawBox(rows, x);
}

void Painting::DrawBox(const std::vector<BoxRow>& rows, double cursor_px) {
  QFont bold = look_.font;
  bold.setBold(true);
  const QFontMetricsF metrics(bold);
  const double line_height = std::ceil(metrics.height()) + 2;
  double width = 0;
  for (const BoxRow& row : rows) {
    width = std::max(width, metrics.horizontalAdvance(row.text));
  }
  QRectF box(cursor_px + kBoxDistance, layout_.area.top() + 4, width + 2 * kBoxPadding,
             static_cast<double>(rows.size()) * line_height + 2 * kBoxPadding);
  if (box.right() > layout_.area.right()) {
    box.moveRight(cursor_px - kBoxDistance);
  }
  box.moveLeft(std::max(box.left(), 0.0));
  painter_.setPen(QPen(look_.grid, 1));
  painter_.setBrush(look_.box);
  painter_.drawRoundedRect(box, 4, 4);
  double baseline = box.top() + kBoxPadding + metrics.ascent() + 1;
  for (const BoxRow& row : rows) {
    painter_.setFont(row.bold ? bold : look_.font);
    painter_.setPen(row.color);
    painter_.drawText(QPointF(box.left() + kBoxPadding, baseline), row.text);
    baseline += line_height;
  }
}

}  // namespace

void PaintPlot(QPainter* painter, const PlotScene& scene, const PlotLayout& layout,
               const PlotLook& look, double device_scale, QImage* scratch) {
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing, false);
  painter->fillRect(QRectF(QPointF(), layout.size), look.background);
  Painting painting(painter, scene, layout, look, device_scale);
  painting.DrawGrid();
  if (scene.data != nullptr) {
    painting.DrawLines(scratch);
    if (!std::isnan(scene.cursor_ms)) {
      painting.DrawCursor();
    }
  }
  painter->restore();
}
