#pragma once

#include <string>

/// Writes whole lines to a descriptor at once, unbuffered, and never waits: a line that nobody
/// takes is lost, because a reader that has stopped must not stop the device.
class LineLog {
 public:
  /// `fd` stays the caller's; -1 swallows every line.
  explicit LineLog(int fd) : fd_(fd) {}
  void Write(const std::string& line) const;

 private:
  int fd_;
};
