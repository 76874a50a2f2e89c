#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>

/// The commands of the console that the user wants to have at hand, kept in the settings file
/// across starts. GUI thread only.
class CommandFavourites : public QObject {
  Q_OBJECT
  /// In the order in which they were added: maps of texts under "name", "command" and "payload".
  Q_PROPERTY(QVariantList list READ list NOTIFY changed)

 public:
  static constexpr int kMost = 20;
  static constexpr int kLongestName = 40;
  static constexpr int kLongestPayload = 600;  ///< characters; the settings file has a limit

  explicit CommandFavourites(QObject* parent = nullptr);

  const QVariantList& list() const { return list_; }

  /// Adds a command as typed under a name; one of that name is replaced. Returns why it cannot be
  /// kept, as a sentence; empty when it is.
  Q_INVOKABLE QString Add(const QString& name, const QString& command, const QString& payload);
  Q_INVOKABLE void Remove(int index);

 signals:
  void changed();

 private:
  bool Keep();

  QVariantList list_;
};
