#pragma once

#include <QMetaObject>
#include <QObject>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "CmxClient/log_sink.h"
#include "session/user_report.h"

/// Hands a worker's reports over to the thread of `context`, in order and without waiting. A report
/// that is no longer `wanted` when it arrives there is dropped.
class PostedReport : public UserReport {
 public:
  /// `context` and `target` have to outlive this object; `wanted` is called on the thread of
  /// `context`.
  PostedReport(QObject& context, UserReport& target, std::function<bool()> wanted)
      : context_(context), target_(target), wanted_(std::move(wanted)) {}

  void Error(const std::string& text) override {
    Post([text](UserReport& target) { target.Error(text); });
  }
  void Success(const std::string& text) override {
    Post([text](UserReport& target) { target.Success(text); });
  }
  void LogLine(const std::string& text, LogType type) override {
    Post([text, type](UserReport& target) { target.LogLine(text, type); });
  }

 private:
  template <typename Call>
  void Post(Call call) {
    QMetaObject::invokeMethod(
        &context_,
        [&target = target_, wanted = wanted_, call = std::move(call)] {
          if (wanted()) {
            call(target);
          }
        },
        Qt::QueuedConnection);
  }

  QObject& context_;
  UserReport& target_;
  const std::function<bool()> wanted_;
};

/// Brings the lines of a device-side log to the log window under one type.
class ReportSink : public kavel::lidar::LogSink {
 public:
  ReportSink(std::shared_ptr<UserReport> report, LogType type)
      : report_(std::move(report)), type_(type) {}

  void WriteLine(const std::string& line) override { report_->LogLine(line, type_); }

 private:
  const std::shared_ptr<UserReport> report_;
  const LogType type_;
};
