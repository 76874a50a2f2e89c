#pragma once

#include <string>

namespace kavel::lidar {

/// Where a client writes what it sent and received, one "SEND: " or "RECV: " line a call.
class LogSink {
 public:
  virtual ~LogSink() = default;

  /// `line` has no line end. Called on whichever thread runs the exchange, while that client's
  /// exchange is locked: an implementation must neither block nor call the client.
  virtual void WriteLine(const std::string& line) = 0;
};

}  // namespace kavel::lidar
