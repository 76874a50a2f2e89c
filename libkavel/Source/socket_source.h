#pragma once

#include <cstdint>
#include <string>

#include "Platform/socket.h"
#include "Source/source.h"

namespace kavel::lidar {

/// Point-cloud packets over UDP, unicast or from a multicast group. Used by one thread at a time.
/// Every step and failure is written to the log.
class SocketSource : public Source {
 public:
  /// Stores the values and opens nothing. `port` in host order, 0 for any free port; an empty
  /// `local_ip` is any interface; an empty `multicast_ip` is no group.
  SocketSource(uint16_t port, const std::string& local_ip, const std::string& multicast_ip);

  /// Creates and binds the socket, non-blocking and with the largest receive buffer that the system
  /// grants, and joins the group. A group that cannot be joined is logged and is no failure:
  /// unicast packets still arrive.
  bool Open() override;
  void Close() override;
  bool IsOpened() override;

  /// Opens the source when it is closed (-1 when that fails). The first call on an idle source
  /// returns -1 at once and arms the wait; the next one waits up to `wait_us`, so that a busy
  /// source costs one system call a packet. `flags` go to the socket call.
  int32_t Receive(UdpPacket& packet, uint16_t length, int32_t flags, int32_t wait_us) override;

  /// Sends to the peer. An error closes the source.
  int32_t Send(const uint8_t* data, uint16_t length, int32_t flags) override;

  /// Where Send goes: IPv4 address in network order, port in host order.
  void SetPeer(uint32_t ip, uint16_t port);

  /// The port that the open socket is bound to, host order; 0 when it is closed. Tells which one
  /// the system chose for port 0.
  uint16_t BoundPort() const;

 private:
  bool Configure();
  bool Bind();
  void JoinGroup();
  int32_t ReadPacket(UdpPacket& packet, uint16_t length, int32_t flags);

  uint16_t port_;
  UniqueSocket socket_;
  uint8_t wait_before_read_ = 0;
  std::string multicast_ip_;
  uint32_t peer_ip_ = 0;
  uint16_t peer_port_ = 0;
  bool has_peer_ = false;
  std::string local_ip_;
};

}  // namespace kavel::lidar
