#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "Log/logger.h"

namespace kavel::lidar::testing {

/// Collects what is logged while it lives; one at a time.
class LogLines {
 public:
  LogLines() {
    Logger::GetInstance().SetObserver([this](LogLevel level, const std::string& text) {
      const std::lock_guard<std::mutex> lock(mutex_);
      lines_.emplace_back(level, text);
    });
  }
  ~LogLines() { Logger::GetInstance().SetObserver({}); }
  LogLines(const LogLines&) = delete;
  LogLines& operator=(const LogLines&) = delete;

  /// Every line so far.
  std::string All() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    std::string all;
    for (const auto& [level, line] : lines_) {
      all += line + '\n';
    }
    return all;
  }

  /// How many lines of this level begin with `text`.
  int Count(LogLevel level, const std::string& text) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    int count = 0;
    for (const auto& [line_level, line] : lines_) {
      if (line_level == level && line.compare(0, text.size(), text) == 0) {
        ++count;
      }
    }
    return count;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::pair<LogLevel, std::string>> lines_;
};

}  // namespace kavel::lidar::testing
