#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>
#include <cstdint>

/// What the command codes of the chosen model do: what they read or write by the model's table, and
/// those that every lidar knows. GUI thread only.
class CommandNames : public QObject {
  Q_OBJECT
  /// The object whose myMap holds the model's variables.
  Q_PROPERTY(QObject* manager READ manager WRITE SetManager NOTIFY changed)

 public:
  using QObject::QObject;

  QObject* manager() const { return manager_; }
  void SetManager(QObject* manager);

  /// What the command, a hexadecimal text as typed, does: a few words, shortened where it is about
  /// many variables. Empty for a code that nothing is known of.
  Q_INVOKABLE QString Of(const QString& command) const;

 signals:
  void changed();

 private slots:
  void Read();

 private:
  QPointer<QObject> manager_;
  QHash<uint8_t, QString> names_;
};
