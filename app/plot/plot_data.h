#pragma once

#include <QAbstractListModel>
#include <QString>
#include <vector>

#include "plot/plot_series.h"

/// A value that can be drawn.
struct PlotName {
  QString name;  ///< without the unit
  QString unit;  ///< empty without one
};

/// What was read of one value at one time.
struct PlotReading {
  double value = kNothingRead;
  bool fresh = true;  ///< false: `value` is an earlier one, which makes a gap in the line
};

/// Values over time, and which of them are drawn: the rows of a legend and the lines of a plot. GUI
/// thread only.
class PlotData : public QAbstractListModel {
  Q_OBJECT
  Q_PROPERTY(int count READ count NOTIFY restarted)
  /// How many readings there are.
  Q_PROPERTY(int samples READ samples NOTIFY changed)

 public:
  enum Role {
    kNameRole = Qt::UserRole + 1,  ///< "name"
    kUnitRole,                     ///< "unit"
    kShownRole,                    ///< "shown": whether it is drawn
    kNowRole,                      ///< "now", "least", "greatest": texts, empty without a number
    kLeastRole,
    kGreatestRole,
    kFreshRole,   ///< "fresh": whether "now" is from the last reading
    kDashesRole,  ///< "dashes": see DashesOf
  };

  using QAbstractListModel::QAbstractListModel;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  int count() const { return static_cast<int>(values_.size()); }
  int samples() const;

  /// Begins anew with these values, of which the first kFirstShown are drawn. Values that were
  /// there before under the same name stay as they are in this respect.
  void Restart(const std::vector<PlotName>& names);
  /// Adds one reading of every value; a reading too few counts as nothing read. Announce() tells.
  void Append(int64_t time_ms, const std::vector<PlotReading>& readings);
  /// Tells that readings were added.
  void Announce();

  /// Draws the value `row` or does not; a row that does not exist changes nothing.
  Q_INVOKABLE void Show(int row, bool on);

  /// Of the value `row`, which has to exist.
  const PlotSeries& SeriesOf(int row) const { return values_[At(row)].series; }
  const PlotName& NameOf(int row) const { return values_[At(row)].name; }
  bool IsShown(int row) const { return values_[At(row)].shown; }
  /// A number with as many decimals as this value ever had, and never more than four.
  QString Text(int row, double number) const;

  /// From the first reading to the last; both 0 without any.
  TimeSpan Extent() const;

  static constexpr int kFirstShown = 3;

 signals:
  /// There are other values, without readings.
  void restarted();
  /// Readings were added, or another choice of values is drawn.
  void changed();

 private:
  struct Value {
    PlotName name;
    bool shown = false;
    PlotSeries series;
    PlotReading now;
    double least = kNothingRead;
    double greatest = kNothingRead;
    int decimals = 0;
  };

  static size_t At(int row) { return static_cast<size_t>(row); }

  std::vector<Value> values_;
};
