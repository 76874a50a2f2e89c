#pragma once

#include "support/bytes.h"

#ifdef _WIN32
#include "Platform/socket.h"
#endif

namespace kavel::lidar::testing {

/// A pseudo-terminal: the code under test opens `path()` as its serial port, the test plays the
/// device at the other end. One thread reads while another writes.
class PtyPair {
 public:
  /// Ends the test program when there is none to be had.
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
  Bytes ReadExactly(size_t count) const {
    Bytes bytes;
    for (Bytes more = {0}; bytes.size() < count && !more.empty();) {
      more = Read(5000);
      bytes.insert(bytes.end(), more.begin(), more.end());
    }
    return bytes;
  }

  /// The device vanishes: the port sees a hang-up. No other call may be running.
  void HangUp();

 private:
#ifdef _WIN32
  UniqueSocket device_;
#else
  int master_ = -1;
  // Held so that reading does not fail while the port is closed.
  int slave_ = -1;
#endif
  std::string path_;
};

}  // namespace kavel::lidar::testing
