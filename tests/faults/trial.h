#pragma once

#include <QJsonObject>
#include <QStringList>

#include "faults/bench.h"

/// What one cell showed.
struct Finding {
  QString outcome;  ///< "done", "failed", or "failed, but done"
  QStringList told;
  qint64 quiet_ms = 0;  ///< the longest gap of the event loop before the fault
  qint64 gap_ms = 0;    ///< and from then on
  QString gap_at;
  double memory_mib = 0;  ///< the most above what it was before
  qint64 recovery_ms = 0;
  bool struck = false;
  QString scene;       ///< what went before, when something is wrong
  QStringList faults;  ///< what is wrong with it, each a sentence; none when the cell is good

  QJsonObject ToJson() const;
  static Finding FromJson(const QJsonObject& json);
};

/// Tries one cell on a bench with nothing connected. Never throws.
Finding TryCell(const Cell& cell, Bench& bench);
