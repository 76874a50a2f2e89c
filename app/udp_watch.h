#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <atomic>
#include <memory>

#include "Source/packet_listener.h"
#include "arrival_rate.h"

/// Tells whether point-cloud packets arrive on a UDP port, and from whom. Nothing is bound before
/// Start. The properties change at most four times a second, on the GUI thread; packets are
/// received and counted on a thread of their own, which Stop and the destructor end.
class UdpWatch : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool running READ running NOTIFY changed)
  /// One sentence: not watching, waiting, what arrives, or why the port cannot be watched.
  Q_PROPERTY(QString summary READ summary NOTIFY changed)
  /// The last sender as "address:port"; empty before the first packet.
  Q_PROPERTY(QString sender READ sender NOTIFY changed)
  /// Packets since Start.
  Q_PROPERTY(double packetCount READ packet_count NOTIFY changed)
  /// Whether a packet arrived within the last second.
  Q_PROPERTY(bool arriving READ arriving NOTIFY changed)

 public:
  explicit UdpWatch(QObject* parent = nullptr);
  ~UdpWatch() override;

  bool running() const { return listener_ != nullptr; }
  const QString& summary() const { return summary_; }
  QString sender() const;
  double packet_count() const { return static_cast<double>(shown_.packets); }
  bool arriving() const { return rate_.per_second() > 0; }

  /// Starts to watch the port written in `port_text` (1 to 65535). False, with the reason in
  /// `summary`, when the text is no such number or the port cannot be opened.
  Q_INVOKABLE bool Start(const QString& port_text);
  /// Ends the watch and frees the port; does nothing when no watch runs.
  Q_INVOKABLE void Stop();

 signals:
  void changed();

 private:
  void ShowArrivals();
  void SetSummary(const QString& text);

  std::atomic<bool> broken_{false};
  std::unique_ptr<kavel::lidar::PacketListener> listener_;
  kavel::lidar::PacketListener::Totals shown_;
  ArrivalRate rate_;
  QString port_text_;
  QString summary_;
  QTimer update_timer_;
};
