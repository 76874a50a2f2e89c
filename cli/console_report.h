#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "session/user_report.h"

/// Brings what the rooms say to standard error. Errors are kept until the command knows what to
/// make of them: the sentence that it ends with is usually one of them. Any thread.
class ConsoleReport : public UserReport {
 public:
  enum class Loudness { kQuiet, kNormal, kVerbose };

  explicit ConsoleReport(Loudness loudness);

  void Error(const std::string& text) override;
  void Success(const std::string& text) override;
  /// Warnings and errors; the other lines only when verbose.
  void LogLine(const std::string& text, LogType type) override;

  /// A line for the user, unless quiet.
  void Note(const std::string& text);
  /// What the program ends with; always shown.
  void Fatal(const std::string& text);

  /// The last error that was kept, or `fallback`; none is kept any more.
  std::string TakeError(const std::string& fallback);
  /// Shows the errors that nobody took.
  void ShowErrors();

  /// Whether somebody sees progress. It is drawn over what was drawn before, and wiped away by the
  /// next line.
  bool shows_progress() const { return shows_progress_; }
  void Progress(const std::string& what, uint64_t done, uint64_t all);
  void EndProgress();

 private:
  enum class Colour { kNone, kRed, kYellow };

  void Write(const std::string& text, Colour colour);
  void Wipe();

  const Loudness loudness_;
  const bool is_terminal_;
  const bool has_colour_;
  const bool shows_progress_;
  std::mutex mutex_;
  std::vector<std::string> errors_;  ///< guarded by mutex_
  bool is_drawn_ = false;            ///< guarded by mutex_
};
