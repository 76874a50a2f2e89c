#pragma once

#include <signal.h>

#include <QProcess>
#include <QString>
#include <QStringList>

/// A program as a process of its own, with everything that it prints in one text. It is ended with
/// the object. No wait lasts longer than thirty seconds.
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
  /// Waits until it has printed `text`.
  bool Prints(const QString& text) {
    while (!Output().contains(text) && process_.waitForReadyRead(kPatienceMs)) {
    }
    return Output().contains(text);
  }

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

  QProcess process_;
  QString output_;
};
