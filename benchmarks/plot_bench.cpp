// What one frame of the plot costs: painted into an image, as the software renderer does it. The
// bound is 8 ms for 12 values of 100,000 samples each.
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <cmath>
#include <cstdint>
#include <random>

#include "plot/plot_data.h"
#include "plot/plot_item.h"

namespace {

constexpr int kValues = 12;
constexpr int64_t kStart_ms = 1600000000000;

// Values that wander, with noise, in four units.
void Fill(PlotData* data, int64_t samples) {
  const char* units[] = {"°C", "V", "A", ""};
  std::vector<PlotName> names;
  for (int i = 0; i < kValues; ++i) {
    names.push_back({QString("Value %1").arg(i), units[i / 3]});
  }
  data->Restart(names);
  std::mt19937 random(1);
  std::normal_distribution<double> noise(0, 0.3);
  std::vector<PlotReading> readings(kValues);
  for (int64_t sample = 0; sample < samples; ++sample) {
    for (int i = 0; i < kValues; ++i) {
      readings[static_cast<size_t>(i)].value =
          std::round(100 *
                     (40 + i + std::sin(static_cast<double>(sample) / 9000) + noise(random))) /
          100;
    }
    data->Append(kStart_ms + sample * 1000, readings);
  }
  for (int i = 0; i < kValues; ++i) {
    data->Show(i, true);
  }
}

// `range(0)`: samples of each value, all of them in view. `range(1)`: device pixels for one pixel
// of the layout, times two.
void FrameOfThePlot(benchmark::State& state) {
  PlotData data;
  Fill(&data, state.range(0));
  const qreal scale = static_cast<qreal>(state.range(1)) / 2;
  PlotItem item;
  item.setSize(QSizeF(900, 500));
  item.SetLook({{"background", QColor("black")},
                {"text", QColor("white")},
                {"grid", QColor("gray")},
                {"lines", QVariantList{QColor("cyan"), QColor("orange"), QColor("green")}},
                {"font", QFont()}});
  item.SetSeries(&data);
  item.ShowAll();
  QImage image((QSizeF(item.width(), item.height()) * scale).toSize(),
               QImage::Format_ARGB32_Premultiplied);
  for (auto _ : state) {
    QPainter painter(&image);
    painter.scale(scale, scale);
    item.paint(&painter);
  }
}

BENCHMARK(FrameOfThePlot)
    ->ArgsProduct({{300, 1000, 3600, 100000}, {2, 3}})
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  // Nothing is shown, so no display is asked for.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
