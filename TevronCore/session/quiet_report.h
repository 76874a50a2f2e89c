#pragma once

#include <memory>
#include <string>
#include <utility>

#include "session/user_report.h"

/// Keeps what goes on in the background out of the boxes: only log lines pass, and the same line
/// twice in a row once. For one thread.
class QuietReport : public UserReport {
 public:
  explicit QuietReport(std::shared_ptr<UserReport> target) : target_(std::move(target)) {}

  void Error(const std::string& /*text*/) override {}
  void Success(const std::string& /*text*/) override {}
  void LogLine(const std::string& text, LogType type) override {
    if (std::exchange(last_, text) != text) {
      target_->LogLine(text, type);
    }
  }

 private:
  const std::shared_ptr<UserReport> target_;
  std::string last_;
};
