#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QVariantList>

#include "transfer_pace.h"
#include "upgrade/upgrade_status.h"

class TevronManager;

/// What the screens show of a firmware upgrade: the one that runs, or the last one. The manager
/// announces its beginning and nothing of its progress, so that it is looked at five times a second
/// while it runs, and not at all otherwise. GUI thread only.
class UpgradeWatch : public QObject {
  Q_OBJECT
  /// The manager; anything else never upgrades.
  Q_PROPERTY(QObject* manager READ manager WRITE SetManager NOTIFY managerChanged)
  /// From the start until the outcome is known, long after the transfer.
  Q_PROPERTY(bool running READ running NOTIFY changed)
  Q_PROPERTY(bool failed READ failed NOTIFY changed)
  /// One or two sentences; empty while it runs and before there was any.
  Q_PROPERTY(QString outcome READ outcome NOTIFY changed)
  /// Maps with "name" and "state": "pending", "running", "done", "failed" or "skipped".
  Q_PROPERTY(QVariantList steps READ steps NOTIFY changed)
  Q_PROPERTY(QString fileName READ file_name NOTIFY changed)
  Q_PROPERTY(QString versionBefore READ version_before NOTIFY changed)
  /// What was sent, never more than the whole, and the whole.
  Q_PROPERTY(int sentKib READ sent_kib NOTIFY changed)
  Q_PROPERTY(int totalKib READ total_kib NOTIFY changed)
  /// Over the last few seconds, renewed once a second; 0 and -1 while unknown.
  Q_PROPERTY(double kibPerSecond READ kib_per_second NOTIFY changed)
  Q_PROPERTY(int secondsLeft READ seconds_left NOTIFY changed)
  /// The version that the lidar runs as far as is known now; empty while unknown.
  Q_PROPERTY(QString runningVersion READ running_version NOTIFY changed)
  /// The connected lidar's serial number; empty while unknown.
  Q_PROPERTY(QString serialNumber READ serial_number NOTIFY changed)
  /// Whether the lidar is upgraded with a package of components.
  Q_PROPERTY(bool takesPackages READ takes_packages NOTIFY changed)

 public:
  explicit UpgradeWatch(QObject* parent = nullptr);

  QObject* manager() const;
  void SetManager(QObject* manager);

  bool running() const { return now_.running; }
  bool failed() const { return now_.failed; }
  QString outcome() const { return QString::fromStdString(now_.outcome); }
  QVariantList steps() const;
  QString file_name() const { return QString::fromStdString(now_.file_name); }
  QString version_before() const { return QString::fromStdString(now_.version_before); }
  int sent_kib() const;
  int total_kib() const { return now_.total_kib; }
  double kib_per_second() const { return kib_per_second_; }
  int seconds_left() const { return seconds_left_; }
  const QString& running_version() const { return running_version_; }
  const QString& serial_number() const { return serial_number_; }
  bool takes_packages() const { return takes_packages_; }

 public slots:
  /// Looks now.
  void Look();

 signals:
  void managerChanged();
  void changed();

 private:
  void MeasurePace();

  QPointer<TevronManager> manager_;
  UpgradeSnapshot now_;
  QString running_version_;
  QString serial_number_;
  bool takes_packages_ = false;
  QElapsedTimer clock_;
  TransferPace pace_;
  qint64 pace_shown_at_ms_ = 0;
  double kib_per_second_ = 0;
  int seconds_left_ = -1;
  QTimer timer_;
};
