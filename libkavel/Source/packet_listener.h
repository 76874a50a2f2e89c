#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "Source/socket_source.h"

namespace kavel::lidar {

/// Listens for point-cloud packets on a thread of its own, counts them and tells where they come
/// from, which is how a command client without a configured address learns one.
///
/// Start, Stop and the destructor belong to one thread; the totals may be read on any.
class PacketListener {
 public:
  /// Each is called at most once a Start, on the receiving thread, and may be empty. They must not
  /// stop or destroy the listener.
  struct Handlers {
    /// With the dotted address of the first sender.
    std::function<void(const std::string& address)> on_first;
    /// The socket has failed and nothing more arrives.
    std::function<void()> on_broken;
  };

  struct Totals {
    uint64_t packets = 0;
    uint32_t ip = 0;    ///< of the last sender, network order
    uint16_t port = 0;  ///< of the last sender, host order
  };

  /// The first three arguments are those of SocketSource.
  PacketListener(uint16_t port, const std::string& local_ip, const std::string& multicast_ip,
                 Handlers handlers);
  ~PacketListener();
  PacketListener(const PacketListener&) = delete;
  PacketListener& operator=(const PacketListener&) = delete;

  /// Opens the socket and starts the thread. False when the port cannot be bound or when it runs
  /// already.
  bool Start();
  /// Ends the thread, within about 100 ms, and closes the socket. The totals stay readable.
  void Stop();

  /// The port bound, which the system chose when 0 was asked for; 0 before Start.
  uint16_t BoundPort() const { return bound_port_; }
  /// Since the last Start.
  Totals totals() const;

 private:
  void Listen();
  void Count(const UdpPacket& packet);

  SocketSource source_;
  const Handlers handlers_;
  std::thread thread_;
  std::atomic<bool> stopping_{false};
  uint16_t bound_port_ = 0;
  mutable std::mutex mutex_;
  Totals totals_;  // guarded by mutex_
};

}  // namespace kavel::lidar
