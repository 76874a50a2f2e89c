#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Source/socket_source.h"

namespace kavel::lidar {

/// Listens for point-cloud packets on a thread of its own, counts them by sender and tells the
/// first sender's address, which is how a command client without a configured address learns one.
///
/// Start, Stop and the destructor belong to one thread; the counts may be read on any.
class AddressFinder {
 public:
  /// Called once, on the receiving thread, with the dotted address of the first sender. It must not
  /// stop or destroy the finder.
  using AddressHandler = std::function<void(const std::string& address)>;

  struct Sender {
    std::string address;  ///< dotted IPv4
    uint64_t packets = 0;
    uint64_t bytes = 0;
  };

  /// Senders beyond this many are counted in the totals alone.
  static constexpr size_t kMaxSenders = 64;

  /// The arguments are those of SocketSource; `on_first` may be empty.
  AddressFinder(uint16_t port, const std::string& local_ip, const std::string& multicast_ip,
                AddressHandler on_first);
  ~AddressFinder();
  AddressFinder(const AddressFinder&) = delete;
  AddressFinder& operator=(const AddressFinder&) = delete;

  /// Opens the socket and starts the thread. False when the port cannot be bound or when it runs
  /// already.
  bool Start();
  /// Ends the thread, within about 100 ms, and closes the socket. The counts stay readable.
  void Stop();
  bool IsRunning() const { return running_; }

  /// The port bound, which the system chose when 0 was asked for; 0 before Start.
  uint16_t BoundPort() const { return bound_port_; }
  /// In order of first appearance.
  std::vector<Sender> Senders() const;
  uint64_t TotalPackets() const { return packets_; }
  uint64_t TotalBytes() const { return bytes_; }

 private:
  void Listen();
  void Count(uint32_t ip, uint32_t size);

  SocketSource source_;
  AddressHandler on_first_;
  std::thread thread_;
  std::atomic<bool> running_{false};
  std::atomic<uint16_t> bound_port_{0};
  std::atomic<uint64_t> packets_{0};
  std::atomic<uint64_t> bytes_{0};
  mutable std::mutex mutex_;
  std::vector<Sender> senders_;
};

}  // namespace kavel::lidar
