#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QVariantMap>

#include "connection/link_snapshot.h"

class TevronManager;

/// What the screens show of the connection: whether one is made, was lost or is waited for, why an
/// attempt failed, and who the connected lidar is. The manager announces neither the end of an
/// attempt that failed nor that an upgrade connects nor that a silent lidar answers again, so that
/// these are looked for ten times a second while there may be one, and not at all otherwise. GUI
/// thread only.
class LinkWatch : public QObject {
  Q_OBJECT
  /// The manager; anything else never connects.
  Q_PROPERTY(QObject* manager READ manager WRITE SetManager NOTIFY managerChanged)
  Q_PROPERTY(bool connecting READ connecting NOTIFY changed)
  /// Connecting to a lidar that restarts.
  Q_PROPERTY(bool awaiting READ awaiting NOTIFY changed)
  /// The connection ended although nobody ended it, and there is none since.
  Q_PROPERTY(bool lost READ lost NOTIFY changed)
  /// Connected, over a serial line, to a lidar that did not answer when it was last asked.
  Q_PROPERTY(bool silent READ silent NOTIFY changed)
  /// What is waited for, since when the connection is lost and why, or since when nothing is
  /// answered: a sentence; else empty.
  Q_PROPERTY(QString news READ news NOTIFY changed)
  /// Why the last attempt failed, a sentence with its place; empty while none is known.
  Q_PROPERTY(QString failure READ failure NOTIFY changed)
  /// The connected lidar; empty while unread.
  Q_PROPERTY(QString partNumber READ part_number NOTIFY changed)
  Q_PROPERTY(QString serialNumber READ serial_number NOTIFY changed)
  Q_PROPERTY(QString version READ version NOTIFY changed)
  /// How it is reached, or was last.
  Q_PROPERTY(QString place READ place NOTIFY changed)
  /// How the link to the connected lidar is encrypted, in sentences; empty for one that is not.
  Q_PROPERTY(QString security READ security NOTIFY changed)
  /// There are values in view that are read from the lidar.
  Q_PROPERTY(bool readsView READ reads_view NOTIFY changed)
  /// The local time of the newest value in view; empty without one.
  Q_PROPERTY(QString readAt READ read_at NOTIFY changed)

 public:
  explicit LinkWatch(QObject* parent = nullptr);

  QObject* manager() const;
  void SetManager(QObject* manager);

  bool connecting() const { return now_.connecting; }
  bool awaiting() const { return now_.awaiting; }
  bool lost() const { return now_.loss.has_value() && !now_.connected; }
  bool silent() const { return now_.silent_since.has_value(); }
  QString news() const;
  QString failure() const { return QString::fromStdString(now_.failure); }
  QString part_number() const { return QString::fromStdString(now_.part_number); }
  QString serial_number() const { return QString::fromStdString(now_.serial_number); }
  QString version() const { return QString::fromStdString(now_.version); }
  QString place() const { return QString::fromStdString(now_.place); }
  QString security() const;
  bool reads_view() const { return now_.reads_view; }
  QString read_at() const;

  /// The connected lidar restarts: connects again when it is back.
  Q_INVOKABLE void AwaitLidar();
  /// The same for a lidar that is reached there from now on.
  Q_INVOKABLE void AwaitLidarAt(const QString& address);
  /// The certificate that `certificateAsked` told of with this map is the lidar's: remembers it and
  /// connects again. Nothing happens when another one was asked about since.
  Q_INVOKABLE void Trust(const QVariantMap& lidar);

 public slots:
  /// Looks now.
  void Look();

 signals:
  void managerChanged();
  void changed();
  /// The lidar took network settings: after its restart it is reached there. Told when whoever sent
  /// them has done.
  void nextAddressTold(const QString& address);
  /// An attempt ended at a lidar whose certificate nobody has trusted yet: a map with the texts
  /// "place", "serialNumber" (empty when it tells none), "subject", "validFrom", "validUntil" and
  /// "sha256".
  void certificateAsked(const QVariantMap& lidar);

 private:
  QPointer<TevronManager> manager_;
  LinkSnapshot now_;
  CertifiedLidar asked_about_;
  QString lost_place_;           ///< stays when an attempt to reach another place fails
  bool waited_in_vain_ = false;  ///< the loss is the end of a wait, maybe where no link ever was
  QTimer timer_;
};
