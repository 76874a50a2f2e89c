#pragma once

#include <QObject>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QString>

#include "log_filter.h"

/// The lines of a LogFilter that the user has selected: those from where the selection began to
/// where it is now. It stays on its lines while others come and go, and ends with either of those
/// two. GUI thread only.
class LogSelection : public QObject {
  Q_OBJECT
  Q_PROPERTY(LogFilter* filter READ filter WRITE SetFilter NOTIFY changed)
  /// Rows of the filter, all of them -1 while nothing is selected. `current` is the end that moves.
  Q_PROPERTY(int first READ first NOTIFY changed)
  Q_PROPERTY(int last READ last NOTIFY changed)
  Q_PROPERTY(int current READ current NOTIFY changed)

 public:
  using QObject::QObject;

  LogFilter* filter() const { return filter_; }
  void SetFilter(LogFilter* filter);
  int first() const { return qMin(anchor_.row(), current_.row()); }
  int last() const { return qMax(anchor_.row(), current_.row()); }
  int current() const { return current_.row(); }

  /// Selects `row` alone; with `extend` also what lies between it and where the selection began. A
  /// row outside the lines means the nearest one.
  Q_INVOKABLE void Select(int row, bool extend);
  Q_INVOKABLE void SelectAll();
  Q_INVOKABLE void Clear();
  /// The selected lines with time and tag, each ended by a line feed.
  Q_INVOKABLE QString Text() const;

 signals:
  void changed();

 private:
  void Look();

  QPointer<LogFilter> filter_;
  QPersistentModelIndex anchor_;
  QPersistentModelIndex current_;
};
