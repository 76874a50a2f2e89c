#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

/// Collects what goes through Qt's message logger while it lives, instead of printing it. One at a
/// time, on the main thread.
class MessageRecorder {
 public:
  MessageRecorder() : previous_(qInstallMessageHandler(&MessageRecorder::Record)) { Lists() = {}; }
  ~MessageRecorder() { qInstallMessageHandler(previous_); }
  MessageRecorder(const MessageRecorder&) = delete;
  MessageRecorder& operator=(const MessageRecorder&) = delete;

  QStringList warnings() const { return Lists().warnings; }
  QStringList debug() const { return Lists().debug; }

 private:
  struct Recorded {
    QStringList debug;
    QStringList warnings;
  };

  static Recorded& Lists() {
    static Recorded lists;
    return lists;
  }

  static void Record(QtMsgType type, const QMessageLogContext&, const QString& text) {
    (type == QtDebugMsg || type == QtInfoMsg ? Lists().debug : Lists().warnings) << text;
  }

  QtMessageHandler previous_;
};
