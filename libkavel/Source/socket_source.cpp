#include "Source/socket_source.h"

#include <algorithm>

#include "Log/logger.h"
#include "Platform/ipv4_text.h"

namespace kavel::lidar {
namespace {

// More than any system grants: what it gives is its own limit.
constexpr int kLargestReceiveBuffer = 400'000'000;
constexpr int kWorkingReceiveBuffer = 26'214'400;
constexpr uint32_t kReceiveTimeoutMs = 20;

int LoggedHandle(SocketHandle socket) { return static_cast<int>(socket); }

// An empty text is any address. A text that is no address becomes the broadcast address, which is
// neither a group nor an interface.
in_addr ReadAddress(const std::string& text) {
  in_addr address{};
  address.s_addr = INADDR_ANY;
  if (!text.empty() && !ParseDottedIpv4(text, reinterpret_cast<uint8_t*>(&address))) {
    address.s_addr = INADDR_NONE;
  }
  return address;
}

}  // namespace

SocketSource::SocketSource(uint16_t port, const std::string& local_ip,
                           const std::string& multicast_ip)
    : port_(port), multicast_ip_(multicast_ip), local_ip_(local_ip) {}

bool SocketSource::Open() {
  socket_ = UniqueSocket(SOCK_DGRAM, IPPROTO_UDP);
  if (!socket_.started()) {
    KAVEL_LOG(kError, "Initilize winsock error !");
  }
  if (!socket_) {
    return false;
  }
  wait_before_read_ = 0;
  const bool configured = Configure();
  if (configured && !Bind()) {
    return false;
  }
  if (!SetNonBlocking(socket_.handle(), true)) {
    KAVEL_LOG(kError, "non-block");
  }
  SetSocketOption(socket_.handle(), SOL_SOCKET, SO_RCVBUF, kWorkingReceiveBuffer);
  if (!multicast_ip_.empty()) {
    JoinGroup();
  }
  // An unbound socket would count as open and never receive anything.
  if (!configured) {
    socket_.Reset();
  }
  return configured;
}

bool SocketSource::Configure() {
  const bool reusable = SetSocketOption(socket_.handle(), SOL_SOCKET, SO_REUSEADDR, 1);
  const int reuse_error = LastSocketError();
  SetSocketOption(socket_.handle(), SOL_SOCKET, SO_RCVBUF, kLargestReceiveBuffer);
  int granted = 0;
  if (!GetSocketOption(socket_.handle(), SOL_SOCKET, SO_RCVBUF, &granted)) {
    const int error = LastSocketError();
    KAVEL_LOG(kWarning, "getsockopt error=%d(%s)!!!", error, SocketErrorText(error).c_str());
  }
  KAVEL_LOG(kInfo, "OS current udp socket recv buff size is: %d", granted);
  if (!reusable) {
    KAVEL_LOG(kError, "setsockopt SO_REUSEADDR failed, errno:%d", reuse_error);
    return false;
  }
  if (SetReceiveTimeoutMs(socket_.handle(), kReceiveTimeoutMs) != 0) {
    KAVEL_LOG(kError, "setsockopt SO_RCVTIMEO failed, errno:%d", LastSocketError());
    return false;
  }
  return true;
}

// Packets of a group are addressed to the group, so the socket must not be bound to an interface.
bool SocketSource::Bind() {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port_);
  address.sin_addr = ReadAddress(multicast_ip_.empty() ? local_ip_ : "");
  // Some systems would bind to the broadcast address and then receive nothing else.
  const bool is_address = address.sin_addr.s_addr != INADDR_NONE;
  if (is_address &&
      bind(socket_.handle(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
    KAVEL_LOG(kInfo, "SocketSource::Open succeed, sock:%d", LoggedHandle(socket_.handle()));
    return true;
  }
  const int error = is_address ? LastSocketError() : kSocketNoAddress;
  // Deliberate: these two are passed over in silence, and the source counts as open.
  if (error == kSocketInProgress || error == kSocketWouldBlock) {
    return true;
  }
  socket_.Reset();
  KAVEL_LOG(kError, "SocketSource::Open(), bind failed, errno: %d", error);
  return false;
}

void SocketSource::JoinGroup() {
  ip_mreq request{};
  request.imr_multiaddr = ReadAddress(multicast_ip_);
  request.imr_interface = ReadAddress(local_ip_);
  if (setsockopt(socket_.handle(), IPPROTO_IP, IP_ADD_MEMBERSHIP,
                 reinterpret_cast<const char*>(&request), sizeof request) == 0) {
    KAVEL_LOG(kInfo, "Recive data from multicast ip address %s", multicast_ip_.c_str());
  } else {
    KAVEL_LOG(kError, "Multicast IP error, set correct multicast ip address or keep it empty");
  }
}

int32_t SocketSource::Receive(UdpPacket& packet, uint16_t length, int32_t flags, int32_t wait_us) {
  packet.timed_out = 0;
  if (!IsOpened() && !Open()) {
    return -1;
  }
  if (wait_before_read_ == 0) {
    const int32_t count = ReadPacket(packet, length, flags);
    if (count < 0) {
      wait_before_read_ = 1;
    }
    return count;
  }
  const int ready = WaitReadable(socket_.handle(), wait_us);
  if (ready > 0) {
    wait_before_read_ = 0;
    return ReadPacket(packet, length, flags);
  }
  if (ready == 0) {
    packet.timed_out = 1;
    return 0;
  }
  KAVEL_LOG(kWarning, "Select timeout error");
  return -1;
}

int32_t SocketSource::ReadPacket(UdpPacket& packet, uint16_t length, int32_t flags) {
  sockaddr_in sender{};
  const size_t room = std::min<size_t>(length, packet.data.size());
  const int count = ReceivePacket(socket_.handle(), packet.data.data(), room, flags, &sender);
  if (count < 0) {
    return -1;
  }
  packet.ip = sender.sin_addr.s_addr;
  packet.port = ntohs(sender.sin_port);
  return count;
}

int32_t SocketSource::Send(const uint8_t* data, uint16_t length, int32_t flags) {
  if (!socket_) {
    KAVEL_LOG(kError, "SocketSource::Send, port %d, sock %d is not open", port_,
              LoggedHandle(socket_.handle()));
    return -1;
  }
  if (!has_peer_) {
    KAVEL_LOG(kError, "SocketSource::Send, client ip is empty");
    return -1;
  }
  sockaddr_in peer{};
  peer.sin_family = AF_INET;
  peer.sin_port = htons(peer_port_);
  peer.sin_addr.s_addr = peer_ip_;
  const auto count = sendto(socket_.handle(), reinterpret_cast<const char*>(data), length, flags,
                            reinterpret_cast<const sockaddr*>(&peer), sizeof peer);
  if (count < 0) {
    KAVEL_LOG(kError, "SocketSource::Send, errno:%d", LastSocketError());
    Close();
  }
  return static_cast<int32_t>(count);
}

void SocketSource::SetPeer(uint32_t ip, uint16_t port) {
  peer_ip_ = ip;
  peer_port_ = port;
  has_peer_ = true;
}

uint16_t SocketSource::BoundPort() const {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  if (!socket_ ||
      getsockname(socket_.handle(), reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    return 0;
  }
  return ntohs(address.sin_port);
}

void SocketSource::Close() {
  KAVEL_LOG(kInfo, "SocketSource::Close()");
  socket_.Reset();
}

bool SocketSource::IsOpened() {
  if (socket_) {
    return true;
  }
  KAVEL_LOG(kWarning, "SocketSource::IsOpened(), port %d, sock %d is not open", port_,
            LoggedHandle(socket_.handle()));
  return false;
}

}  // namespace kavel::lidar
