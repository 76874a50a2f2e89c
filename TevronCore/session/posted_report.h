#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "CmxClient/log_sink.h"
#include "session/post.h"
#include "session/user_report.h"

/// Hands a worker's reports over to the owner's thread. A report that is no longer `wanted` when it
/// arrives there is dropped.
class PostedReport : public UserReport {
 public:
  /// `target` has to outlive what was posted; `wanted` is called on the owner's thread.
  PostedReport(Post post, UserReport& target, std::function<bool()> wanted)
      : post_(std::move(post)), target_(target), wanted_(std::move(wanted)) {}

  void Error(const std::string& text) override {
    Hand([text](UserReport& target) { target.Error(text); });
  }
  void ErrorWithRemedy(const std::string& text, const std::string& remedy) override {
    Hand([text, remedy](UserReport& target) { target.ErrorWithRemedy(text, remedy); });
  }
  void Success(const std::string& text) override {
    Hand([text](UserReport& target) { target.Success(text); });
  }
  void LogLine(const std::string& text, LogType type) override {
    Hand([text, type](UserReport& target) { target.LogLine(text, type); });
  }

 private:
  template <typename Call>
  void Hand(Call call) {
    post_([&target = target_, wanted = wanted_, call = std::move(call)] {
      if (wanted()) {
        call(target);
      }
    });
  }

  const Post post_;
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
