#pragma once

#include "support/bytes.h"

namespace kavel::lidar::testing {

/// A pseudo-terminal: the code under test opens `path()` as its serial port, the test plays the
/// device at the other end. One thread reads while another writes.
class PtyPair {
 public:
  /// Ends the test program when the system has no pseudo-terminal left.
  PtyPair();
  ~PtyPair();
  PtyPair(const PtyPair&) = delete;
  PtyPair& operator=(const PtyPair&) = delete;

  const std::string& path() const { return path_; }

  /// Sends all bytes to the port.
  void Write(const Bytes& bytes) const;

  /// What the port has sent, after waiting up to `timeout_ms` for the first byte; empty after that.
  Bytes Read(int timeout_ms) const;

  /// Reads until there are `count` bytes; fewer when none came for five seconds.
  Bytes ReadExactly(size_t count) const;

  /// The device vanishes: the port sees a hang-up. No other call may be running.
  void HangUp();

 private:
  int master_ = -1;
  // Held so that reading does not fail while the port is closed.
  int slave_ = -1;
  std::string path_;
};

}  // namespace kavel::lidar::testing
