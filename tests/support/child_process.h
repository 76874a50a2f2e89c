#pragma once

#include <signal.h>

#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include "support/owned_process.h"

/// A program as a process of its own, with everything that it prints in one text. It is ended with
/// the object, and with this program. No wait lasts longer than thirty seconds.
class ChildProcess {
 public:
  ChildProcess() { process_.setProcessChannelMode(QProcess::MergedChannels); }
  ChildProcess(const QString& program, const QStringList& arguments) : ChildProcess() {
    Start(program, arguments);
  }
  ~ChildProcess() { Kill(); }

  void SetEnvironment(const QProcessEnvironment& all) { process_.setProcessEnvironment(all); }
  void SetFolder(const QString& folder) { process_.setWorkingDirectory(folder); }
  void Start(const QString& program, const QStringList& arguments = {}) {
    process_.start(program, arguments);
  }

  /// Everything printed so far.
  QString Output() {
    output_ += QString::fromLocal8Bit(process_.readAll());
    return output_;
  }
  /// Lets go of what it printed so far but for the lines that match: of a program that runs for
  /// hours.
  void Forget(const QRegularExpression& but_for) {
    output_ = Output().split('\n').filter(but_for).join('\n') + '\n';
  }
  /// Waits until it has printed `text`.
  bool Prints(const QString& text) {
    while (!Output().contains(text) && PrintsMore()) {
    }
    return Output().contains(text);
  }
  /// Waits until it has printed anything more; false when it does not.
  bool PrintsMore() { return process_.waitForReadyRead(kPatienceMs); }

  qint64 id() const { return process_.processId(); }
  bool Runs() const { return process_.state() != QProcess::NotRunning; }
  void Signal(int number) {
    if (Runs()) {
      ::kill(static_cast<pid_t>(process_.processId()), number);
    }
  }
  /// Ends it at once.
  void Kill() {
    process_.kill();
    process_.waitForFinished(kPatienceMs);
  }
  /// Waits for its end; -1 when it crashed, or goes on.
  int ExitCode() {
    process_.waitForFinished(kPatienceMs);
    Output();
    return !Runs() && process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
  }

 private:
  static constexpr int kPatienceMs = 30000;

  OwnedProcess process_;
  QString output_;
};
