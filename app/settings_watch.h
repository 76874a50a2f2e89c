#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QUrl>
#include <QVariantList>
#include <QVariantMap>
#include <memory>

#include "settings_files/settings_comparison.h"
#include "settings_files/settings_status.h"
#include "settings_rows.h"

class TevronManager;

/// What the screens do with settings files, and what they show of it. The manager's LidarSettings
/// announces when a task begins and ends; in between it is looked at ten times a second. GUI thread
/// only.
class SettingsWatch : public QObject {
  Q_OBJECT
  /// The manager; with anything else nothing can be done.
  Q_PROPERTY(QObject* manager READ manager WRITE SetManager NOTIFY managerChanged)
  /// Something is read or written now: what, as a sentence; how far, from 0 to 1, negative while
  /// that is not known.
  Q_PROPERTY(bool running READ running NOTIFY changed)
  Q_PROPERTY(bool applying READ applying NOTIFY changed)
  /// A snapshot is taken ahead of a reset or of what is to be applied.
  Q_PROPERTY(bool preparing READ preparing NOTIFY changed)
  Q_PROPERTY(bool cancelling READ cancelling NOTIFY changed)
  Q_PROPERTY(QString activity READ activity NOTIFY changed)
  Q_PROPERTY(double fraction READ fraction NOTIFY changed)
  /// What the last task brought; empty while one runs.
  Q_PROPERTY(QString outcome READ outcome NOTIFY changed)
  Q_PROPERTY(bool failed READ failed NOTIFY changed)
  /// Whether anything was compared, and its rows.
  Q_PROPERTY(bool compared READ compared NOTIFY changed)
  Q_PROPERTY(SettingsRows* rows READ rows CONSTANT)
  /// The two sides: maps with "title", "model", "serial", "version" and "time", texts that are
  /// empty where they are not known; empty maps where there is no such side.
  Q_PROPERTY(QVariantMap left READ left NOTIFY changed)
  Q_PROPERTY(QVariantMap right READ right NOTIFY changed)
  /// The right side is the lidar, and what is ticked can be applied to it.
  Q_PROPERTY(bool withLidar READ with_lidar NOTIFY changed)
  Q_PROPERTY(QStringList warnings READ warnings NOTIFY changed)
  Q_PROPERTY(QString refusal READ refusal NOTIFY changed)

 public:
  explicit SettingsWatch(QObject* parent = nullptr);

  QObject* manager() const;
  void SetManager(QObject* manager);

  bool running() const { return now_.task != SettingsTask::kNone; }
  bool applying() const { return now_.task == SettingsTask::kApplying; }
  bool preparing() const { return now_.task == SettingsTask::kSnapshot; }
  bool cancelling() const { return now_.cancelling; }
  QString activity() const;
  double fraction() const;
  QString outcome() const { return QString::fromStdString(now_.outcome); }
  bool failed() const { return now_.failed; }
  bool compared() const { return comparison_ != nullptr; }
  SettingsRows* rows() { return &rows_; }
  QVariantMap left() const;
  QVariantMap right() const;
  bool with_lidar() const { return comparison_ != nullptr && comparison_->with_lidar; }
  QStringList warnings() const;
  QString refusal() const;

  /// Whether something may be read from or written to the lidar now; an error tells why not.
  Q_INVOKABLE bool MayUseLidar();
  /// A name for the file of the connected lidar's settings.
  Q_INVOKABLE QString SuggestedName() const;
  Q_INVOKABLE void Save(const QUrl& file);
  /// With the lidar. `to_apply` ticks everything that may be applied.
  Q_INVOKABLE void Compare(const QUrl& file, bool to_apply);
  Q_INVOKABLE void CompareFiles(const QUrl& left, const QUrl& right);
  /// A file by itself.
  Q_INVOKABLE void Open(const QUrl& file);
  /// Writes what is ticked.
  Q_INVOKABLE void Apply();
  Q_INVOKABLE void Cancel();
  /// Keeps what the lidar holds before a "reset" or an "apply", and tells by snapshotTaken.
  Q_INVOKABLE void TakeSnapshot(const QString& reason);
  /// What is kept, the newest first: maps with "url", "time", "reason", "model" and "serial".
  Q_INVOKABLE QVariantList Snapshots() const;
  /// The firmware that the file tells; empty where it tells none. Reads the file.
  Q_INVOKABLE QString FirmwareOf(const QUrl& file) const;

 public slots:
  /// Looks now.
  void Look();

 signals:
  void managerChanged();
  void changed();
  /// Another comparison is shown.
  void comparedAnew();
  /// `problem` says why there is no snapshot; empty when there is one.
  void snapshotTaken(const QString& reason, const QString& problem);

 private:
  void TakeComparison();

  QPointer<TevronManager> manager_;
  SettingsStatus now_;
  std::shared_ptr<const SettingsComparison> comparison_;
  SettingsRows rows_;
  bool ticks_all_ = false;  ///< in the next comparison
  QTimer timer_;
};
