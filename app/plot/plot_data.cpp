#include "plot/plot_data.h"

#include <algorithm>
#include <cmath>

#include "plot/plot_style.h"

namespace {

constexpr int kMostDecimals = 4;

// How many decimals it takes to write `number`.
int DecimalsOf(double number) {
  double scaled = std::abs(number);
  for (int decimals = 0; decimals < kMostDecimals; ++decimals, scaled *= 10) {
    if (std::abs(scaled - std::round(scaled)) <= 1e-9 * std::max(1.0, scaled)) {
      return decimals;
    }
  }
  return kMostDecimals;
}

QVariantList Dashes(int row) {
  QVariantList lengths;
  for (const qreal length : DashesOf(row)) {
    lengths << length;
  }
  return lengths;
}

}  // namespace

int PlotData::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : count(); }

QVariant PlotData::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
    return {};
  }
  const Value& value = values_[At(index.row())];
  switch (role) {
    case kNameRole:
      return value.name.name;
    case kUnitRole:
      return value.name.unit;
    case kShownRole:
      return value.shown;
    case kNowRole:
      return Text(index.row(), value.now.value);
    case kLeastRole:
      return Text(index.row(), value.least);
    case kGreatestRole:
      return Text(index.row(), value.greatest);
    case kFreshRole:
      return value.now.fresh;
    case kDashesRole:
      return Dashes(index.row());
    default:
      return {};
  }
}

QHash<int, QByteArray> PlotData::roleNames() const {
  return {{kNameRole, "name"},   {kUnitRole, "unit"},    {kShownRole, "shown"},
          {kNowRole, "now"},     {kLeastRole, "least"},  {kGreatestRole, "greatest"},
          {kFreshRole, "fresh"}, {kDashesRole, "dashes"}};
}

int PlotData::samples() const {
  return values_.empty() ? 0 : static_cast<int>(values_.front().series.size());
}

void PlotData::Restart(const std::vector<PlotName>& names) {
  beginResetModel();
  const std::vector<Value> before = std::move(values_);
  values_.clear();
  for (const PlotName& name : names) {
    const auto same = std::find_if(before.begin(), before.end(), [&](const Value& value) {
      return value.name.name == name.name;
    });
    Value value;
    value.name = name;
    value.shown = same != before.end() ? same->shown : count() < kFirstShown;
    values_.push_back(std::move(value));
  }
  endResetModel();
  emit restarted();
  emit changed();
}

void PlotData::Append(int64_t time_ms, const std::vector<PlotReading>& readings) {
  for (size_t i = 0; i < values_.size(); ++i) {
    Value& value = values_[i];
    value.now = i < readings.size() ? readings[i] : PlotReading();
    const double number = value.now.value;
    const bool is_read = value.now.fresh && !std::isnan(number);
    value.series.Append(time_ms, is_read ? number : kNothingRead);
    if (is_read) {
      value.least = number >= value.least ? value.least : number;
      value.greatest = number <= value.greatest ? value.greatest : number;
      value.decimals = std::max(value.decimals, DecimalsOf(number));
    }
  }
}

void PlotData::Announce() {
  if (!values_.empty()) {
    emit dataChanged(index(0), index(count() - 1),
                     {kNowRole, kLeastRole, kGreatestRole, kFreshRole});
  }
  emit changed();
}

void PlotData::Show(int row, bool on) {
  if (row < 0 || row >= count() || values_[At(row)].shown == on) {
    return;
  }
  values_[At(row)].shown = on;
  emit dataChanged(index(row), index(row), {kShownRole});
  emit changed();
}

QString PlotData::Text(int row, double number) const {
  return std::isnan(number) ? QString() : QString::number(number, 'f', values_[At(row)].decimals);
}

TimeSpan PlotData::Extent() const {
  if (samples() == 0) {
    return {};
  }
  const PlotSeries& series = values_.front().series;
  return {static_cast<double>(series.times()[0]),
          static_cast<double>(series.times()[series.size() - 1])};
}
