#pragma once

#include <QImage>
#include <QPainter>

#include "plot/plot_layout.h"
#include "plot/plot_style.h"

/// Draws a scene as it was laid out, over the whole of its area. The time that this takes depends
/// on the number of pixels, not on that of the samples. `scratch` is an image that the lines are
/// drawn in first; keeping it from one time to the next saves making it.
void PaintPlot(QPainter* painter, const PlotScene& scene, const PlotLayout& layout,
               const PlotLook& look, double device_scale, QImage* scratch);
