#pragma once

#include <functional>
#include <mutex>
#include <thread>

#include "Platform/socket.h"
#include "support/bytes.h"

/// TCP connections for tests. Everything is on 127.0.0.1 and on ports that the system chooses.
namespace kavel::lidar::testing {

/// One end of a connection, in the hands of a test.
class TcpEnd {
 public:
  /// Takes over an accepted connection. Every wait ends when the far end goes away or the listening
  /// peer does.
  explicit TcpEnd(UniqueSocket socket) : socket_(std::move(socket)) {}
  /// Connects to a port of this machine. No wait for bytes lasts longer than five seconds.
  static TcpEnd To(uint16_t port);

  /// The next `size` bytes; fewer when the connection ended or time was up.
  Bytes Read(size_t size);
  void Send(const Bytes& bytes);
  /// Byte for byte, with a moment between them.
  void Drip(const Bytes& bytes);
  /// True when the far end ended the connection with a reset, false for an orderly end.
  bool WaitForEnd();
  /// Waits for the end; false when bytes come before it, or nothing does.
  bool EndsHere();
  /// The far end sees a reset instead of an orderly end.
  void Reset();
  /// True once the far end has gone or the listening peer has.
  bool Ended();

 private:
  UniqueSocket socket_;
};

/// Accepts one connection after another and runs the script over each.
class SocketPeer {
 public:
  using Script = std::function<void(TcpEnd&)>;

  explicit SocketPeer(Script script);
  ~SocketPeer();
  SocketPeer(const SocketPeer&) = delete;
  SocketPeer& operator=(const SocketPeer&) = delete;

  uint16_t port() const { return port_; }

 private:
  void Serve();

  Script script_;
  uint16_t port_ = 0;
  UniqueSocket listener_;
  std::mutex mutex_;
  SocketHandle connection_ = kInvalidSocket;  // guarded by mutex_
  bool ending_ = false;                       // guarded by mutex_
  std::thread thread_;
};

/// A port whose queue is full, so that connecting to it never gets an answer.
class DeafPort {
 public:
  DeafPort();

  uint16_t port() const { return port_; }

 private:
  uint16_t port_ = 0;
  UniqueSocket listener_;
  std::vector<UniqueSocket> fillers_;
};

/// A port that nobody listens on (it was free a moment ago).
uint16_t UnusedPort();

}  // namespace kavel::lidar::testing
