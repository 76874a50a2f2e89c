#pragma once

#include <string>
#include <vector>

#include "session/user_report.h"

/// Everything an operation reported, in order: "error: ", "success: " or "INFO: " and so on, then
/// the text. Empty messages show nothing and are left out. For one thread.
class RecordedReport : public UserReport {
 public:
  void Error(const std::string& text) override { Record("error", text); }
  void Success(const std::string& text) override { Record("success", text); }
  void LogLine(const std::string& text, LogType type) override { Record(LogTypeName(type), text); }

  /// What was reported since the last call.
  std::vector<std::string> Take() {
    std::vector<std::string> taken;
    taken.swap(lines_);
    return taken;
  }

 private:
  void Record(const std::string& kind, const std::string& text) {
    if (!text.empty()) {
      lines_.push_back(kind + ": " + text);
    }
  }

  std::vector<std::string> lines_;
};
