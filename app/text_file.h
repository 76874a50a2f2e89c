#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

/// Writes texts of the screens into files that the user has chosen. GUI thread only.
class TextFile : public QObject {
  Q_OBJECT

 public:
  using QObject::QObject;

  /// Writes the whole text, in UTF-8, or leaves what the file held before. Returns what went wrong
  /// as a sentence; empty when it is written.
  Q_INVOKABLE static QString Write(const QUrl& url, const QString& text);
};
