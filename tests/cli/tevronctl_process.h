#pragma once

#include <gtest/gtest.h>
#include <signal.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "support/owned_process.h"

/// tevronctl as a process of its own, with the tables under "./Config".
class Tevronctl {
 public:
  explicit Tevronctl(const QStringList& arguments) {
    process_.start(QStringLiteral(TEVRONCTL_PROGRAM),
                   QStringList{"--config", "./Config"} + arguments);
    process_.waitForStarted(kPatienceMs);
  }
  ~Tevronctl() {
    process_.kill();
    process_.waitForFinished(kPatienceMs);
  }

  /// Its exit code, once it has ended; -1 when it does not, or crashed.
  int Code() {
    process_.waitForFinished(kPatienceMs);
    out_ += process_.readAllStandardOutput();
    err_ += process_.readAllStandardError();
    const bool ended =
        process_.state() == QProcess::NotRunning && process_.exitStatus() == QProcess::NormalExit;
    return ended ? process_.exitCode() : -1;
  }
  void Signal(int number) { ::kill(static_cast<pid_t>(process_.processId()), number); }

  /// Waits until `text` stands on standard error.
  bool Says(const QByteArray& text) {
    process_.setReadChannel(QProcess::StandardError);
    while (!err_.contains(text) && process_.waitForReadyRead(kPatienceMs)) {
      err_ += process_.readAllStandardError();
    }
    return err_.contains(text);
  }

  /// After Code: what was printed; the object on the last line, empty when that is none.
  const QByteArray& out() const { return out_; }
  const QByteArray& err() const { return err_; }
  QJsonObject Json() const {
    return QJsonDocument::fromJson(out_.trimmed().split('\n').last()).object();
  }
  QJsonObject Error() const { return Json()["error"].toObject(); }

 private:
  static constexpr int kPatienceMs = 60000;

  OwnedProcess process_;
  QByteArray out_;
  QByteArray err_;
};

/// One that has ended, for a line of a test: its words when something is not as expected.
inline std::string Words(const Tevronctl& ended) {
  return (ended.out() + ended.err()).toStdString();
}

/// One that runs to its end, which has to be with that exit code, and tells its results in words.
/// `at` are further arguments: those that name the lidar.
struct Said : Tevronctl {
  Said(int code, const QStringList& arguments, const QStringList& at = {})
      : Tevronctl(arguments + at) {
    EXPECT_EQ(Code(), code) << (arguments.join(' ') + '\n').toStdString() << Words(*this);
  }
};
/// The same with its results as JSON.
struct Ran : Said {
  Ran(int code, const QStringList& arguments, const QStringList& at = {})
      : Said(code, QStringList{"--json"} + arguments, at) {}
};
