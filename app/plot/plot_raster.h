#pragma once

#include <QColor>
#include <QImage>

/// Draws into an image, column by column, with smooth upper and lower edges. A pen that draws a
/// line of a thousand corners as smoothly takes a hundred times as long.
class PlotRaster {
 public:
  /// Clears `image`, which has to outlive this and is made again when it does not have this size.
  /// Sizes are in pixels of the device.
  PlotRaster(QImage* image, const QSize& size);

  int width() const { return width_; }
  /// Fills column `x`, which has to exist, from `top` to `bottom` as far as it is inside the image.
  /// Pixels that are covered in part get that share of the colour, which is opaque.
  void Fill(int x, double top, double bottom, QRgb color);

 private:
  static void Blend(QRgb* pixel, double cover, QRgb color);

  QRgb* pixels_;
  int stride_;  ///< pixels from one line to the next
  int width_;
  int height_;
};
