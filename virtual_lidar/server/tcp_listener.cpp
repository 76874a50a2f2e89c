#include "server/tcp_listener.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "Platform/ipv4_text.h"

namespace {

sockaddr* Generic(sockaddr_in* address) { return reinterpret_cast<sockaddr*>(address); }

std::string PeerName(const sockaddr_in& address) {
  const auto* octets = reinterpret_cast<const uint8_t*>(&address.sin_addr);
  return kavel::lidar::DottedIpv4(octets) + ":" + std::to_string(ntohs(address.sin_port));
}

}  // namespace

TcpListener::TcpListener(EventLoop* loop, ClientHandler on_client)
    : loop_(loop), on_client_(std::move(on_client)) {}

TcpListener::~TcpListener() { Close(); }

bool TcpListener::Open(uint16_t port) {
  Close();
  fd_ = UniqueFd(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  if (!fd_.valid()) {
    return Fail("make a socket for", port);
  }
  const int on = 1;
  // Connections of the time before a restart may still linger on the port.
  setsockopt(fd_.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  if (bind(fd_.get(), Generic(&address), size) != 0 || listen(fd_.get(), SOMAXCONN) != 0 ||
      getsockname(fd_.get(), Generic(&address), &size) != 0) {
    return Fail("listen on", port);
  }
  port_ = ntohs(address.sin_port);
  loop_->Watch(fd_.get(), POLLIN, [this](short) { Accept(); });
  return true;
}

void TcpListener::Close() {
  if (!fd_.valid()) {
    return;
  }
  loop_->Unwatch(fd_.get());
  fd_ = UniqueFd();
}

bool TcpListener::Fail(const char* doing, uint16_t port) {
  error_ = std::string("cannot ") + doing + " 127.0.0.1:" + std::to_string(port) + ": " +
           std::generic_category().message(errno);
  Close();
  return false;
}

void TcpListener::Accept() {
  sockaddr_in address = {};
  socklen_t size = sizeof address;
  UniqueFd client(accept4(fd_.get(), Generic(&address), &size, SOCK_NONBLOCK | SOCK_CLOEXEC));
  if (!client.valid()) {
    return;  // it has gone again
  }
  const int on = 1;
  setsockopt(client.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  on_client_(std::move(client), PeerName(address));
}
