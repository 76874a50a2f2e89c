#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

/// Collects the warnings that go through Qt's message logger while it lives, instead of printing
/// them. One at a time, on the main thread.
class MessageRecorder {
 public:
  MessageRecorder() : previous_(qInstallMessageHandler(&MessageRecorder::Record)) {
    Warnings().clear();
  }
  ~MessageRecorder() { qInstallMessageHandler(previous_); }
  MessageRecorder(const MessageRecorder&) = delete;
  MessageRecorder& operator=(const MessageRecorder&) = delete;

  QStringList warnings() const { return Warnings(); }

 private:
  static QStringList& Warnings() {
    static QStringList warnings;
    return warnings;
  }

  static void Record(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type != QtDebugMsg && type != QtInfoMsg) {
      Warnings() << text;
    }
  }

  QtMessageHandler previous_;
};
