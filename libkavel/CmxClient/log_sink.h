#pragma once

#include <string>

namespace kavel::lidar {

/// Takes lines for the user, such as those of the authentication.
class LogSink {
 public:
  virtual ~LogSink() = default;

  /// `line` has no line end. Called on whichever thread runs an exchange, while exchanges are
  /// locked: an implementation must neither block nor send commands.
  virtual void WriteLine(const std::string& line) = 0;
};

}  // namespace kavel::lidar
