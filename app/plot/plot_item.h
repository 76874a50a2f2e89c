#pragma once

#include <QImage>
#include <QPointer>
#include <QQuickPaintedItem>
#include <QVariantMap>

#include "plot/plot_data.h"
#include "plot/plot_layout.h"
#include "plot/plot_style.h"
#include "plot/plot_view.h"

/// Values over time, painted by itself, so that it looks the same with every renderer. It is
/// painted again when what it shows has changed, and at no other time.
///
/// The mouse: the wheel zooms at the pointer, dragging pans, hovering reads the values there and
/// selects the nearest line. The keyboard: left and right pan, + and - zoom, with Shift left and
/// right move the cursor from sample to sample, up and down select a value, Home shows everything,
/// End goes back to the newest sample, Space pauses and goes on, Escape takes the cursor away.
class PlotItem : public QQuickPaintedItem {
  Q_OBJECT
  /// What is drawn; stays the owner's and may be null.
  Q_PROPERTY(PlotData* series READ series WRITE SetSeries NOTIFY seriesChanged)
  /// The row that stands out, -1 for none.
  Q_PROPERTY(int selected READ selected WRITE SetSelected NOTIFY selectedChanged)
  /// Samples further apart than this, in milliseconds, are not joined.
  Q_PROPERTY(double bridge READ bridge WRITE SetBridge NOTIFY lookChanged)
  /// Whether the newest sample stays in view.
  Q_PROPERTY(bool following READ following WRITE Follow NOTIFY viewChanged)
  /// How much time is in view, in milliseconds.
  Q_PROPERTY(double length READ length NOTIFY viewChanged)
  /// The time in view, and the values at the cursor, in words.
  Q_PROPERTY(QString readout READ readout NOTIFY viewChanged)
  /// "background", "grid", "text", "box" (colours), "lines" (a list of colours) and "font".
  Q_PROPERTY(QVariantMap look READ look WRITE SetLook NOTIFY lookChanged)

 public:
  explicit PlotItem(QQuickItem* parent = nullptr);

  void paint(QPainter* painter) override;

  PlotData* series() const { return series_; }
  void SetSeries(PlotData* series);
  int selected() const { return scene_.selected; }
  void SetSelected(int row);
  double bridge() const { return scene_.bridge_ms; }
  void SetBridge(double bridge_ms);
  bool following() const { return view_.following(); }
  double length() const { return view_.span().length(); }
  QString readout() const;
  const QVariantMap& look() const { return look_map_; }
  void SetLook(const QVariantMap& look);

  /// See PlotView.
  Q_INVOKABLE void Zoom(double factor, double anchor = 0.5);
  Q_INVOKABLE void Pan(double share);
  Q_INVOKABLE void ShowLength(double length_ms);
  Q_INVOKABLE void ShowAll();
  Q_INVOKABLE void Follow(bool on);
  /// Moves the cursor by so many samples, from the newest one in view when there is no cursor.
  Q_INVOKABLE void MoveCursor(int samples);
  Q_INVOKABLE void HideCursor();

  /// How the values of the selected row are distributed over the time in view, in `parts` parts:
  /// "name", "unit", "samples", "mean", "deviation" (texts but for the samples), "counts",
  /// "least" and "greatest". Empty without a selected row or a value.
  Q_INVOKABLE QVariantMap DistributionOfSelected(int parts) const;

 signals:
  void seriesChanged();
  void selectedChanged();
  void viewChanged();
  void lookChanged();

 protected:
  void geometryChanged(const QRectF& now, const QRectF& before) override;
  void hoverMoveEvent(QHoverEvent* event) override;
  void hoverLeaveEvent(QHoverEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void TakeData();
  void TakeView();
  void SetCursorAt(double time_ms);
  void SelectFirst();
  void SelectNext(int step);
  bool Take(int key, bool shift);

  QPointer<PlotData> series_;
  PlotView view_;
  PlotScene scene_;
  PlotLook look_;
  QVariantMap look_map_;
  /// As it was painted last: what the pointer points at.
  PlotLayout layout_;
  QImage scratch_;
  double pointer_px_ = kNothingRead;  ///< where the pointer hovers; NaN when it does not
  double drag_px_ = 0;
};
