// The plot without a window: what the painted pixels say of samples that are known.

#include <gtest/gtest.h>

#include <QDateTime>
#include <QImage>
#include <QPainter>
#include <QQuickWindow>
#include <QSignalSpy>
#include <cmath>

#include "plot/plot_axis.h"
#include "plot/plot_item.h"
#include "plot/plot_series.h"
#include "plot/plot_view.h"

namespace {

const QColor kLine("#ff0000");
const QColor kOtherLine("#00ff00");
const QColor kText("#0000ff");

// The item as the program uses it, in colours that are easy to tell apart.
class CountedPlot : public PlotItem {
 public:
  CountedPlot() {
    setSize(QSizeF(400, 200));
    SetLook({{"background", QColor("black")},
             {"grid", QColor("black")},
             {"text", kText},
             {"box", QColor("black")},
             {"lines", QVariantList{kLine, kOtherLine}},
             {"font", QFont()}});
  }
  void paint(QPainter* painter) override {
    ++paints;
    PlotItem::paint(painter);
  }
  QImage Picture(double scale = 1) {
    QImage image((size() * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.scale(scale, scale);
    PlotItem::paint(&painter);
    return image;
  }

  int paints = 0;
};

// Whether the column has a pixel of that colour, from row `top` to before row `bottom`.
bool Holds(const QImage& image, int x, const QColor& color, int top, int bottom) {
  for (int y = top; y < bottom; ++y) {
    if (image.pixelColor(x, y) == color) {
      return true;
    }
  }
  return false;
}

// For the columns of a picture from the first with a line to the last: 'x' a line, '.' none.
QString Columns(const QImage& image, const QColor& color = kLine) {
  QString text;
  for (int x = 0; x < image.width(); ++x) {
    text += Holds(image, x, color, 0, image.height()) ? 'x' : '.';
  }
  return text.mid(text.indexOf('x'), text.lastIndexOf('x') - text.indexOf('x') + 1);
}

class PlotTest : public testing::Test {
 protected:
  PlotTest() {
    data_.Restart({{"Supply", "V"}, {"Motor", "°C"}, {"Laser", "°C"}});
    for (int row = 0; row < 3; ++row) {
      data_.Show(row, row == 0);
    }
    plot_.SetSeries(&data_);
  }
  void Append(int64_t time_s, double value) {
    data_.Append(time_s * 1000, {{value}, {value}, {value}});
    data_.Announce();
  }

  PlotData data_;
  CountedPlot plot_;
};

TEST_F(PlotTest, DrawsALineWhereTheValuesAre) {
  for (int i = 0; i <= 10; ++i) {
    Append(i, i);
  }
  plot_.ShowAll();
  for (const double scale : {1.0, 1.5}) {
    const QImage image = plot_.Picture(scale);
    const int right = static_cast<int>(image.width() - 14 * scale);
    EXPECT_TRUE(Holds(image, right, kLine, 0, image.height() / 4)) << "it rises to the right";
    EXPECT_FALSE(Holds(image, right, kLine, image.height() / 2, image.height()));
    EXPECT_FALSE(Columns(image).contains('.')) << "it is whole at a scale of " << scale;
  }
}

TEST_F(PlotTest, LeavesAGapWhereNothingWasRead) {
  const auto gaps = [this] {
    plot_.ShowAll();
    return Columns(plot_.Picture()).split('x', Qt::SkipEmptyParts).size();
  };
  for (int i = 0; i < 30; ++i) {
    Append(i, i == 10 ? kNothingRead : 1);
  }
  EXPECT_EQ(gaps(), 1) << "a failed reading";
  Append(60, 1);
  EXPECT_EQ(gaps(), 1) << "a slow reading";
  plot_.SetBridge(5000);
  EXPECT_EQ(gaps(), 2) << "one that came too late";
  data_.Append(61000, {{7, false}});
  EXPECT_EQ(gaps(), 2) << "an old value is none";
}

TEST_F(PlotTest, LosesNoSpikeAmongAHundredThousandSamples) {
  const int64_t last = PlotSeries::kCapacity + 500;
  for (int64_t i = 0; i < last; ++i) {
    data_.Append(i * 1000, {{i == last / 2 ? 100.0 : std::sin(static_cast<double>(i))}});
  }
  data_.Announce();
  EXPECT_EQ(data_.samples(), PlotSeries::kCapacity) << "the oldest make room";
  plot_.ShowAll();
  const QImage image = plot_.Picture();
  int spikes = 0;
  for (int x = 0; x < image.width(); ++x) {
    spikes += Holds(image, x, kLine, 0, image.height() / 3) ? 1 : 0;
  }
  EXPECT_GE(spikes, 1);
  EXPECT_LE(spikes, 2);
  EXPECT_FALSE(Columns(image).contains('.'));
}

TEST_F(PlotTest, ReadsTheSampleNextToTheCursor) {
  for (int i = 0; i < 10; ++i) {
    Append(i, i + 0.25);
  }
  plot_.ShowAll();
  const QImage before = plot_.Picture();
  plot_.MoveCursor(0);
  plot_.MoveCursor(-4);
  EXPECT_TRUE(plot_.readout().contains("Supply 5.25 V")) << plot_.readout().toStdString();
  const QImage after = plot_.Picture();
  EXPECT_NE(after, before);
  int cursors = 0;
  for (int x = 60; x < after.width(); ++x) {
    cursors += Holds(after, x, kText, 150, 165) && !Holds(before, x, kText, 150, 165) ? 1 : 0;
  }
  EXPECT_EQ(cursors, 1) << "one line down to the axis";
  plot_.HideCursor();
  EXPECT_EQ(plot_.Picture(), before);
}

TEST_F(PlotTest, GivesEveryUnitALaneAndEveryLineItsDashes) {
  for (int i = 0; i < 100; ++i) {
    Append(i, 5);
  }
  data_.Show(1, true);
  plot_.ShowAll();
  const QImage image = plot_.Picture();
  EXPECT_FALSE(Columns(image, kLine).contains('.'));
  EXPECT_TRUE(Columns(image, kOtherLine).contains("x....")) << "dashed";
  EXPECT_FALSE(Holds(image, 200, kLine, 100, 200)) << "volts have the upper half";
  EXPECT_EQ(plot_.DistributionOfSelected(4)["samples"].toInt(), 100);
}

TEST_F(PlotTest, PaintsOnlyWhatHasChanged) {
  QQuickWindow window;
  window.resize(400, 200);
  plot_.setParentItem(window.contentItem());
  window.show();
  QSignalSpy frames(&window, &QQuickWindow::frameSwapped);
  const auto next_frame = [&] {
    window.update();
    return frames.wait(20000);
  };
  ASSERT_TRUE(next_frame());
  const int painted = plot_.paints;
  ASSERT_TRUE(next_frame());
  EXPECT_EQ(plot_.paints, painted) << "another frame, nothing new in it";
  Append(1, 1);
  ASSERT_TRUE(next_frame());
  EXPECT_EQ(plot_.paints, painted + 1);
  EXPECT_FALSE(frames.wait(300)) << "left alone it asks for no frame";
  plot_.setParentItem(nullptr);
}

TEST(PlotViewTest, FollowsTheNewestUntilThePastIsLookedAt) {
  PlotView view;
  view.SetExtent({0, 1000000});
  view.ShowLength(300000);
  EXPECT_EQ(view.span().to, 1000000);
  view.Zoom(0.5, 0);
  EXPECT_EQ(view.span().to, 1000000) << "the newest stays while it follows";
  view.Pan(-1);
  view.SetExtent({0, 1100000});
  EXPECT_EQ(view.span().to, 850000) << "the past stays in view";
  view.Pan(-100);
  EXPECT_EQ(view.span().from, 0) << "there is nothing before the first sample";
  view.Zoom(1e-9, 0.5);
  EXPECT_EQ(view.span().length(), PlotView::kLeastLength);
  view.Pan(1e9);
  EXPECT_TRUE(view.following());
  view.ShowAll();
  EXPECT_EQ(view.span().length(), 1100000);
}

TEST(PlotAxisTest, MarksRoundNumbersAndTimes) {
  const auto labels = [](const std::vector<PlotTick>& ticks) {
    QStringList texts;
    for (const PlotTick& tick : ticks) {
      texts << tick.label;
    }
    return texts.join(' ').toStdString();
  };
  EXPECT_EQ(labels(ValueTicks(RoundRangeOf(45.1, 48.9, 4))), "45 46 47 48 49");
  EXPECT_EQ(labels(ValueTicks(RoundRangeOf(-0.12, 0.31, 5))), "-0.2 -0.1 0.0 0.1 0.2 0.3 0.4");
  EXPECT_EQ(labels(ValueTicks(RoundRangeOf(600, 600, 2))), "590 600 610");
  const qint64 midnight = QDateTime(QDate(2026, 3, 2), QTime(0, 0)).toMSecsSinceEpoch();
  const auto around = [&](double seconds) {
    const auto from = static_cast<double>(midnight) - seconds * 1000;
    return labels(TimeTicks({from, from + 2000 * seconds}, 5));
  };
  EXPECT_EQ(around(10), "23:59:50 23:59:55 2 Mar 00:00:05");
  EXPECT_EQ(around(3600), "23:00 23:30 2 Mar 00:30");
}

TEST(PlotSeriesTest, GoesOnAfterTheClockWasSetBack) {
  PlotSeries series;
  for (const int64_t time : {1000, 2000, 3000, 1500}) {
    series.Append(time, static_cast<double>(time));
  }
  ASSERT_EQ(series.size(), 2U);
  EXPECT_EQ(series.times()[1], 1500);
  const Distribution found = series.DistributionIn({0, 1e9}, 2);
  EXPECT_EQ(found.mean, 1250);
  EXPECT_EQ(found.deviation, 250);
  EXPECT_EQ(found.counts, (std::vector<size_t>{1, 1}));
}

}  // namespace
