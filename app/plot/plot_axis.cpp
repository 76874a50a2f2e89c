#include "plot/plot_axis.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>
#include <cmath>

namespace {

constexpr double kSecond = 1000;
constexpr double kMinute = 60 * kSecond;
constexpr double kHour = 60 * kMinute;
constexpr double kDay = 24 * kHour;
constexpr double kTimeSteps[] = {
    kSecond,     2 * kSecond, 5 * kSecond,  10 * kSecond, 15 * kSecond, 30 * kSecond, kMinute,
    2 * kMinute, 5 * kMinute, 10 * kMinute, 15 * kMinute, 30 * kMinute, kHour,        2 * kHour,
    3 * kHour,   6 * kHour,   12 * kHour,   kDay,         2 * kDay,     7 * kDay};

// The least 1, 2 or 5 times a power of ten that is not below `width`.
double RoundStep(double width) {
  const double power = std::pow(10.0, std::floor(std::log10(width)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    // A hair of tolerance: 0.3 / 3 is not quite 0.1.
    if (factor * power >= width * (1 - 1e-9)) {
      return factor * power;
    }
  }
  return 10 * power;
}

QDateTime LocalTime(double time_ms) {
  return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(std::llround(time_ms)));
}

}  // namespace

RoundRange RoundRangeOf(double least, double greatest, int most) {
  if (!(greatest > least)) {
    // One value alone, or one so large that nothing fits between it and the next.
    const double room = std::max(std::abs(least) * 0.01, 0.5);
    least -= room;
    greatest += room;
  }
  RoundRange range;
  range.step = RoundStep((greatest - least) / std::max(most, 1));
  range.low = std::floor(least / range.step + 1e-9) * range.step;
  range.high = std::ceil(greatest / range.step - 1e-9) * range.step;
  return range;
}

std::vector<PlotTick> ValueTicks(const RoundRange& range) {
  std::vector<PlotTick> ticks;
  const int decimals = std::max(0, -static_cast<int>(std::floor(std::log10(range.step) + 1e-9)));
  const int steps = static_cast<int>(std::lround((range.high - range.low) / range.step));
  for (int i = 0; i <= steps; ++i) {
    const double at = range.low + i * range.step;
    // Adding 0 takes the sign off a negative zero.
    const double shown = std::abs(at) < range.step / 2 ? 0 : at;
    const bool is_large = std::abs(range.high) >= 1e7 || std::abs(range.low) >= 1e7;
    ticks.push_back(
        {at, is_large ? QString::number(shown, 'g', 6) : QString::number(shown, 'f', decimals)});
  }
  return ticks;
}

std::vector<PlotTick> TimeTicks(const TimeSpan& span, int most) {
  std::vector<PlotTick> ticks;
  if (!(span.length() > 0)) {
    return ticks;
  }
  const double* last = std::end(kTimeSteps) - 1;
  const double* step =
      std::lower_bound(std::begin(kTimeSteps), last, span.length() / std::max(most, 1));
  // Weeks are counted up where even they lie too close: nobody reads months off a monitor.
  const double width = *step * std::max(1.0, std::ceil(span.length() / std::max(most, 1) / *step));
  const double offset = LocalTime(span.from).offsetFromUtc() * kSecond;
  for (double at = std::ceil((span.from + offset) / width) * width - offset; at < span.to;
       at += width) {
    const QDateTime time = LocalTime(at);
    const bool is_midnight = time.time().msecsSinceStartOfDay() == 0;
    ticks.push_back({at, QLocale::c().toString(time, width >= kDay || is_midnight ? "d MMM"
                                                     : width < kMinute            ? "HH:mm:ss"
                                                                                  : "HH:mm")});
  }
  return ticks;
}

QString TimeText(double time_ms) {
  const QDateTime time = LocalTime(time_ms);
  const bool is_today = time.date() == QDate::currentDate();
  return QLocale::c().toString(time, is_today ? "HH:mm:ss" : "d MMM yyyy HH:mm:ss");
}
