#include "plot/plot_item.h"

#include <QCursor>
#include <cmath>

#include "plot/plot_axis.h"
#include "plot/plot_painter.h"

namespace {

constexpr double kPanShare = 0.1;
constexpr double kZoomFactor = 1.25;
// One notch of an ordinary mouse wheel.
constexpr double kWheelNotch = 120;

QVector<QColor> ColorsOf(const QVariant& list) {
  QVector<QColor> colors;
  for (const QVariant& color : list.toList()) {
    colors << color.value<QColor>();
  }
  return colors;
}

}  // namespace

PlotItem::PlotItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setOpaquePainting(true);
  setAcceptHoverEvents(true);
  setAcceptedMouseButtons(Qt::LeftButton);
  setActiveFocusOnTab(true);
  setFlag(ItemAcceptsInputMethod, false);
  scene_.span = view_.span();
}

void PlotItem::paint(QPainter* painter) {
  const double scale = painter->deviceTransform().m11();
  layout_ = LayOut(scene_, QSizeF(width(), height()), QFontMetricsF(look_.font), scale,
                   layout_.label_room);
  PaintPlot(painter, scene_, layout_, look_, scale, &scratch_);
}

void PlotItem::SetSeries(PlotData* series) {
  if (series_ == series) {
    return;
  }
  if (series_ != nullptr) {
    disconnect(series_, nullptr, this, nullptr);
  }
  series_ = series;
  scene_.data = series;
  scene_.cursor_ms = kNothingRead;
  SelectFirst();
  if (series != nullptr) {
    connect(series, &PlotData::changed, this, &PlotItem::TakeData);
    connect(series, &PlotData::restarted, this, &PlotItem::SelectFirst);
    connect(series, &QObject::destroyed, this, [this] { scene_.data = nullptr; });
  }
  view_ = PlotView();
  TakeData();
  emit seriesChanged();
}

void PlotItem::SetSelected(int row) {
  if (scene_.selected != row) {
    scene_.selected = row;
    emit selectedChanged();
    emit viewChanged();
    update();
  }
}

void PlotItem::SetBridge(double bridge_ms) {
  if (scene_.bridge_ms != bridge_ms) {
    scene_.bridge_ms = bridge_ms;
    emit lookChanged();
    update();
  }
}

void PlotItem::SetLook(const QVariantMap& look) {
  look_map_ = look;
  look_.background = look["background"].value<QColor>();
  look_.grid = look["grid"].value<QColor>();
  look_.text = look["text"].value<QColor>();
  look_.box = look["box"].value<QColor>();
  look_.lines = ColorsOf(look["lines"]);
  look_.font = look["font"].value<QFont>();
  emit lookChanged();
  update();
}

void PlotItem::Zoom(double factor, double anchor) {
  view_.Zoom(factor, anchor);
  TakeView();
}

void PlotItem::Pan(double share) {
  view_.Pan(share);
  TakeView();
}

void PlotItem::ShowLength(double length_ms) {
  view_.ShowLength(length_ms);
  TakeView();
}

void PlotItem::ShowAll() {
  view_.ShowAll();
  TakeView();
}

void PlotItem::Follow(bool on) {
  view_.Follow(on);
  TakeView();
}

// The cursor stands on a sample: between two of them nothing was read.
void PlotItem::SetCursorAt(double time_ms) {
  double cursor = kNothingRead;
  if (series_ != nullptr && series_->samples() > 0 && !std::isnan(time_ms)) {
    const PlotSeries& series = series_->SeriesOf(0);
    cursor = static_cast<double>(series.times()[series.Nearest(time_ms)]);
  }
  const bool same =
      cursor == scene_.cursor_ms || (std::isnan(cursor) && std::isnan(scene_.cursor_ms));
  if (!same) {
    scene_.cursor_ms = cursor;
    emit viewChanged();
    update();
  }
}

void PlotItem::MoveCursor(int samples) {
  if (series_ == nullptr || series_->samples() == 0) {
    return;
  }
  pointer_px_ = kNothingRead;
  const PlotSeries& series = series_->SeriesOf(0);
  const bool has_cursor = !std::isnan(scene_.cursor_ms);
  const auto from =
      static_cast<int>(series.Nearest(has_cursor ? scene_.cursor_ms : view_.span().to));
  const int to = std::clamp(has_cursor ? from + samples : from, 0, series_->samples() - 1);
  const auto time = static_cast<double>(series.times()[to]);
  SetCursorAt(time);
  if (time < view_.span().from || time > view_.span().to) {
    Pan(samples < 0 ? -0.5 : 0.5);
  }
}

void PlotItem::HideCursor() {
  pointer_px_ = kNothingRead;
  SetCursorAt(kNothingRead);
}

QString PlotItem::readout() const {
  QString text = tr("%1 to %2").arg(TimeText(view_.span().from), TimeText(view_.span().to));
  if (series_ == nullptr || std::isnan(scene_.cursor_ms)) {
    return text;
  }
  text += tr("; at %1:").arg(TimeText(scene_.cursor_ms));
  for (int row = 0; row < series_->count(); ++row) {
    const PlotSeries& series = series_->SeriesOf(row);
    const size_t sample = series.Nearest(scene_.cursor_ms);
    if (series_->IsShown(row) && sample < series.size()) {
      const QString value = series_->Text(row, series.values()[sample]);
      const PlotName& name = series_->NameOf(row);
      text += ' ' + name.name + ' ' + (value.isEmpty() ? tr("not read") : value + ' ' + name.unit) +
              ';';
    }
  }
  return text;
}

QVariantMap PlotItem::DistributionOfSelected(int parts) const {
  const int row = scene_.selected;
  if (series_ == nullptr || row < 0 || row >= series_->count() || parts < 1) {
    return {};
  }
  const Distribution found =
      series_->SeriesOf(row).DistributionIn(view_.span(), static_cast<size_t>(parts));
  if (found.samples == 0) {
    return {};
  }
  QVariantList counts;
  const RoundRange digits = RoundRangeOf(found.least, found.greatest, parts);
  const int decimals = std::max(0, -static_cast<int>(std::floor(std::log10(digits.step)))) + 1;
  for (const size_t count : found.counts) {
    counts << static_cast<int>(count);
  }
  return {{"name", series_->NameOf(row).name},
          {"unit", series_->NameOf(row).unit},
          {"samples", static_cast<int>(found.samples)},
          {"mean", QString::number(found.mean, 'f', decimals)},
          {"deviation", QString::number(found.deviation, 'f', decimals)},
          {"counts", counts},
          {"least", series_->Text(row, found.least)},
          {"greatest", series_->Text(row, found.greatest)}};
}

void PlotItem::TakeData() {
  view_.SetExtent(series_ == nullptr ? TimeSpan() : series_->Extent());
  TakeView();
}

void PlotItem::TakeView() {
  scene_.span = view_.span();
  if (!std::isnan(pointer_px_)) {
    // The pointer stays where it is; what it points at has moved.
    layout_.time.low = scene_.span.from;
    layout_.time.high = scene_.span.to;
    SetCursorAt(layout_.time.ToValue(pointer_px_));
  }
  emit viewChanged();
  update();
}

void PlotItem::geometryChanged(const QRectF& now, const QRectF& before) {
  QQuickPaintedItem::geometryChanged(now, before);
  update();
}

// A scene that changes tells of a pointer that rests on it, too: what is selected stays then.
void PlotItem::hoverMoveEvent(QHoverEvent* event) {
  if (event->posF() == event->oldPosF()) {
    return;
  }
  pointer_px_ = event->posF().x();
  SetCursorAt(layout_.time.ToValue(pointer_px_));
  const int nearest = layout_.NearestRow(scene_, event->posF());
  if (nearest >= 0) {
    SetSelected(nearest);
  }
}

void PlotItem::hoverLeaveEvent(QHoverEvent* /*event*/) { HideCursor(); }

void PlotItem::mousePressEvent(QMouseEvent* event) {
  forceActiveFocus(Qt::MouseFocusReason);
  drag_px_ = event->localPos().x();
  setCursor(Qt::ClosedHandCursor);
}

void PlotItem::mouseMoveEvent(QMouseEvent* event) {
  const double moved = event->localPos().x() - drag_px_;
  drag_px_ = event->localPos().x();
  pointer_px_ = drag_px_;
  Pan(-moved / layout_.area.width());
}

void PlotItem::mouseReleaseEvent(QMouseEvent* /*event*/) { unsetCursor(); }

void PlotItem::wheelEvent(QWheelEvent* event) {
  const double notches = event->angleDelta().y() / kWheelNotch;
  const double anchor = (event->position().x() - layout_.area.left()) / layout_.area.width();
  Zoom(std::pow(kZoomFactor, -notches), std::clamp(anchor, 0.0, 1.0));
}

void PlotItem::SelectFirst() {
  SetSelected(-1);
  SelectNext(1);
}

void PlotItem::SelectNext(int step) {
  if (series_ == nullptr) {
    return;
  }
  for (int row = scene_.selected + step; row >= 0 && row < series_->count(); row += step) {
    if (series_->IsShown(row)) {
      SetSelected(row);
      return;
    }
  }
}

bool PlotItem::Take(int key, bool shift) {
  switch (key) {
    case Qt::Key_Left:
      shift ? MoveCursor(-1) : Pan(-kPanShare);
      return true;
    case Qt::Key_Right:
      shift ? MoveCursor(1) : Pan(kPanShare);
      return true;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
      Zoom(1 / kZoomFactor);
      return true;
    case Qt::Key_Minus:
      Zoom(kZoomFactor);
      return true;
    case Qt::Key_Up:
      SelectNext(-1);
      return true;
    case Qt::Key_Down:
      SelectNext(1);
      return true;
    case Qt::Key_Home:
      ShowAll();
      return true;
    case Qt::Key_End:
      Follow(true);
      return true;
    case Qt::Key_Space:
      Follow(!following());
      return true;
    case Qt::Key_Escape:
      HideCursor();
      return true;
    default:
      return false;
  }
}

void PlotItem::keyPressEvent(QKeyEvent* event) {
  event->setAccepted(Take(event->key(), event->modifiers().testFlag(Qt::ShiftModifier)));
}
