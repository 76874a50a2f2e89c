#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

/// The far end of TCP connections, for tests. Everything is on 127.0.0.1 and on ports that the
/// system chooses.
namespace kavel::lidar::testing {

using Bytes = std::vector<uint8_t>;

/// One accepted connection, in the hands of a script. Every wait ends when the client goes away or
/// the test is over.
class PeerConnection {
 public:
  explicit PeerConnection(int socket) : socket_(socket) {}

  /// The next `size` bytes; fewer when the connection ended.
  Bytes Read(size_t size);
  void Send(const Bytes& bytes);
  /// Byte for byte, with a moment between them.
  void Drip(const Bytes& bytes);
  void WaitForEnd();
  /// The client sees a reset instead of an orderly end.
  void Reset();
  /// True once the client has gone or the test is over.
  bool Ended();

 private:
  int socket_;
};

/// Accepts one connection after another and runs the script over each.
class SocketPeer {
 public:
  using Script = std::function<void(PeerConnection&)>;

  explicit SocketPeer(Script script);
  ~SocketPeer();
  SocketPeer(const SocketPeer&) = delete;
  SocketPeer& operator=(const SocketPeer&) = delete;

  uint16_t port() const { return port_; }
  int accepted() const { return accepted_; }

 private:
  void Serve();

  Script script_;
  uint16_t port_ = 0;
  int listener_;
  std::atomic<int> accepted_{0};
  std::mutex mutex_;
  int connection_ = -1;  // guarded by mutex_
  bool ending_ = false;  // guarded by mutex_
  std::thread thread_;
};

/// A port whose queue is full, so that connecting to it never gets an answer.
class DeafPort {
 public:
  DeafPort();
  ~DeafPort();
  DeafPort(const DeafPort&) = delete;
  DeafPort& operator=(const DeafPort&) = delete;

  uint16_t port() const { return port_; }

 private:
  uint16_t port_ = 0;
  int listener_;
  std::vector<int> fillers_;
};

/// A port that nobody listens on (it was free a moment ago).
uint16_t UnusedPort();

}  // namespace kavel::lidar::testing
