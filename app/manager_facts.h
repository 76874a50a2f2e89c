#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

class TevronManager;

/// What the screens ask about the manager beside its properties. GUI thread only.
class ManagerFacts : public QObject {
  Q_OBJECT
  /// The manager; of anything else there is nothing to tell.
  Q_PROPERTY(QObject* manager READ manager WRITE SetManager NOTIFY managerChanged)
  /// Whether a lidar of the chosen model has a calibration that can be saved.
  Q_PROPERTY(bool hasCalibration READ hasCalibration NOTIFY changed)
  /// Lines for the user: the file that describes the chosen model, the folders with tables of the
  /// site and the user that there are, and where the user's own would lie.
  Q_PROPERTY(QStringList tables READ tables NOTIFY changed)

 public:
  using QObject::QObject;

  QObject* manager() const;
  void SetManager(QObject* manager);

  bool hasCalibration() const;
  QStringList tables() const;

  /// What the user can do about the error that the manager tells now, where its cause is known;
  /// else empty.
  Q_INVOKABLE QString Remedy() const;

 signals:
  void managerChanged();
  void changed();

 private:
  QPointer<TevronManager> manager_;
};
