#include "plot/plot_raster.h"

#include <algorithm>
#include <cmath>

PlotRaster::PlotRaster(QImage* image, const QSize& size) {
  if (image->size() != size) {
    *image = QImage(size, QImage::Format_ARGB32_Premultiplied);
  }
  image->fill(Qt::transparent);
  width_ = image->width();
  height_ = image->height();
  stride_ = image->bytesPerLine() / static_cast<int>(sizeof(QRgb));
  pixels_ = reinterpret_cast<QRgb*>(image->bits());
}

void PlotRaster::Fill(int x, double top, double bottom, QRgb color) {
  top = std::max(top, 0.0);
  bottom = std::min(bottom, static_cast<double>(height_));
  if (!(top < bottom)) {
    return;
  }
  const int first = static_cast<int>(top);
  const int last = static_cast<int>(std::ceil(bottom)) - 1;
  QRgb* pixel = pixels_ + static_cast<ptrdiff_t>(first) * stride_ + x;
  if (first == last) {
    Blend(pixel, bottom - top, color);
    return;
  }
  Blend(pixel, first + 1 - top, color);
  pixel += stride_;
  for (int y = first + 1; y < last; ++y, pixel += stride_) {
    *pixel = color;
  }
  Blend(pixel, bottom - last, color);
}

void PlotRaster::Blend(QRgb* pixel, double cover, QRgb color) {
  const int over = static_cast<int>(cover * 256);
  const int under = 256 - over;
  const auto mix = [=](int top, int bottom) { return (top * over + bottom * under) >> 8; };
  *pixel = qRgba(mix(qRed(color), qRed(*pixel)), mix(qGreen(color), qGreen(*pixel)),
                 mix(qBlue(color), qBlue(*pixel)), mix(255, qAlpha(*pixel)));
}
