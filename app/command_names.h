#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>

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

  /// What the command and the payload, hexadecimal texts as typed, do: a few words, shortened where
  /// that is about many variables. Of the payload only the head counts, which names a long command.
  /// Empty for a code that nothing is known of.
  Q_INVOKABLE QString Of(const QString& command, const QString& payload) const;

 signals:
  void changed();

 private slots:
  void Read();

 private:
  QPointer<QObject> manager_;
  /// By the code and, of a long command, the bytes at the head of the payload.
  QHash<QByteArray, QString> names_;
  int longest_ = 1;  ///< of those keys
};
