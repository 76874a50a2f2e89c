#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <cstdint>
#include <optional>

#include "arrival_rate.h"
#include "connection/uart_arrivals.h"

class TevronManager;

/// Tells whether point-cloud packets arrive on the UART of a lidar that is connected by a pair of
/// serial ports. The connection reads and counts them in any case; the counts are looked at four
/// times a second while there is such a connection, and not at all otherwise. GUI thread only.
class UartWatch : public QObject {
  Q_OBJECT
  /// The manager; anything else is never connected.
  Q_PROPERTY(QObject* manager READ manager WRITE SetManager NOTIFY managerChanged)
  /// Whether there is such a connection. Without one the texts are empty.
  Q_PROPERTY(bool running READ running NOTIFY changed)
  /// One sentence: what arrives, and where.
  Q_PROPERTY(QString summary READ summary NOTIFY changed)
  /// Packets since connecting, and what arrived damaged since the first of them.
  Q_PROPERTY(QString tally READ tally NOTIFY changed)
  /// Whether a packet arrived within the last second.
  Q_PROPERTY(bool arriving READ arriving NOTIFY changed)

 public:
  explicit UartWatch(QObject* parent = nullptr);

  QObject* manager() const;
  void SetManager(QObject* manager);

  bool running() const { return shown_.has_value(); }
  QString summary() const;
  QString tally() const;
  bool arriving() const { return running() && rate_.per_second() > 0; }

 signals:
  void managerChanged();
  void changed();

 private:
  void Look();

  QPointer<TevronManager> manager_;
  std::optional<UartArrivals> shown_;
  uint64_t stray_before_ = 0;  ///< bytes that came before the first packet
  ArrivalRate rate_;
  QTimer timer_;
};
