#pragma once

#include <string>

/// Kind of a line in the log window, which shows it in square brackets before the text.
enum class LogType { kInfo, kSuccess, kWarning, kError, kCmx, kByteFlow };

/// "INFO", "SUCCESS", "WARNING", "ERROR", "CMX" or "BYTESFLOW".
const char* LogTypeName(LogType type);

/// Where an operation says what happened. Operations know nothing else of the user interface, so
/// that each can be built and tested without it. Callable on any thread; never blocks on the
/// receiver.
class UserReport {
 public:
  virtual ~UserReport() = default;

  /// A failure the user has to see now: shown in the error box. An empty text shows nothing.
  virtual void Error(const std::string& text) = 0;
  /// A failure whose cause is known: the box says what to do about it, in place of what is usually
  /// to be done. Where there is no such box it is an Error.
  virtual void ErrorWithRemedy(const std::string& text, const std::string& /*remedy*/) {
    Error(text);
  }
  /// A result the user waits for: shown in a notice that passes. An empty text shows nothing.
  virtual void Success(const std::string& text) = 0;
  /// One line of the log window.
  virtual void LogLine(const std::string& text, LogType type) = 0;
};
