#pragma once

#include <QObject>
#include <QString>
#include <QVariantMap>

/// What the command console says about texts that the user typed and bytes that the lidar answered.
/// Codes, payloads and replies are hexadecimal texts as the manager takes and gives them.
class ConsoleWords : public QObject {
  Q_OBJECT

 public:
  using QObject::QObject;

  /// What is wrong with a command or a payload while it is typed; empty for one that can be sent.
  Q_INVOKABLE static QString CommandProblem(const QString& text);
  Q_INVOKABLE static QString PayloadProblem(const QString& text);

  /// The command in one spelling, like "0x07": what goes over the wire of what was typed.
  Q_INVOKABLE static QString CodeText(const QString& command);

  /// The reply to `command` in words, under "text", and how it went as a tag of the log ("SUCCESS",
  /// "WARNING", "ERROR"), under "tag". An empty `header` stands for no answer.
  Q_INVOKABLE static QVariantMap Verdict(const QString& command, const QString& header);

  /// What the lidar's return code in a message means, as a sentence; empty where the message names
  /// none that is known, or says it itself.
  Q_INVOKABLE static QString RefusalIn(const QString& message);

  /// The payload in lines of so many bytes: where the line begins, the bytes, and the characters
  /// that they stand for, with a point for one that cannot be printed.
  Q_INVOKABLE static QString Dump(const QString& payload, int bytes_per_line);
};
