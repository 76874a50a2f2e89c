#include "support/socket_peer.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <utility>

namespace kavel::lidar::testing {
namespace {

constexpr int kDripPauseMs = 2;
constexpr time_t kPatienceS = 5;

sockaddr_in Loopback(uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  return address;
}

int Listen(int backlog, uint16_t* port) {
  const int listener = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address = Loopback(0);
  socklen_t size = sizeof address;
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  if (bind(listener, generic, size) != 0 || listen(listener, backlog) != 0 ||
      getsockname(listener, generic, &size) != 0) {
    throw std::runtime_error("cannot listen on 127.0.0.1");
  }
  *port = ntohs(address.sin_port);
  return listener;
}

int StartConnecting(uint16_t port) {
  const int client = socket(AF_INET, SOCK_STREAM, 0);
  fcntl(client, F_SETFL, O_NONBLOCK);
  const sockaddr_in address = Loopback(port);
  // It is under way; the queue decides whether it ever ends.
  (void)connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  return client;
}

}  // namespace

TcpEnd TcpEnd::To(uint16_t port) {
  const int client = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const timeval patience = {kPatienceS, 0};
  setsockopt(client, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  const sockaddr_in address = Loopback(port);
  if (connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::runtime_error("cannot connect to port " + std::to_string(port));
  }
  return TcpEnd(client);
}

TcpEnd::~TcpEnd() { close(socket_); }

Bytes TcpEnd::Read(size_t size) {
  Bytes bytes(size);
  size_t received = 0;
  while (received < size) {
    const ssize_t count = recv(socket_, bytes.data() + received, size - received, 0);
    if (count < 1) {
      break;
    }
    received += static_cast<size_t>(count);
  }
  bytes.resize(received);
  return bytes;
}

void TcpEnd::Send(const Bytes& bytes) {
  size_t sent = 0;
  while (sent < bytes.size()) {
    const ssize_t count = send(socket_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count < 1) {
      return;
    }
    sent += static_cast<size_t>(count);
  }
}

void TcpEnd::Drip(const Bytes& bytes) {
  for (const uint8_t byte : bytes) {
    Send({byte});
    pollfd entry{socket_, 0, 0};
    poll(&entry, 1, kDripPauseMs);
  }
}

bool TcpEnd::WaitForEnd() {
  uint8_t byte = 0;
  ssize_t count = 1;
  while (count > 0) {
    count = recv(socket_, &byte, 1, 0);
  }
  return count == -1 && errno == ECONNRESET;
}

bool TcpEnd::EndsHere() {
  uint8_t byte = 0;
  const ssize_t count = recv(socket_, &byte, 1, 0);
  return count == 0 || (count < 0 && errno == ECONNRESET);
}

void TcpEnd::Reset() {
  const linger reset{1, 0};
  setsockopt(socket_, SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
}

bool TcpEnd::Ended() {
  pollfd entry{socket_, POLLRDHUP, 0};
  return poll(&entry, 1, 0) > 0;
}

SocketPeer::SocketPeer(Script script)
    : script_(std::move(script)), listener_(Listen(8, &port_)), thread_([this] { Serve(); }) {}

SocketPeer::~SocketPeer() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ending_ = true;
    shutdown(connection_, SHUT_RDWR);
  }
  shutdown(listener_, SHUT_RDWR);
  thread_.join();
  close(listener_);
}

void SocketPeer::Serve() {
  while (true) {
    const int socket = accept(listener_, nullptr, nullptr);
    if (socket == -1) {
      return;
    }
    const int on = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      connection_ = socket;
      if (ending_) {
        shutdown(socket, SHUT_RDWR);
      }
    }
    TcpEnd connection(socket);
    script_(connection);
    const std::lock_guard<std::mutex> lock(mutex_);
    connection_ = -1;
  }
}

DeafPort::DeafPort() : listener_(Listen(0, &port_)) {
  // One more than the queue holds; what follows is left without an answer.
  for (int i = 0; i < 2; ++i) {
    fillers_.push_back(StartConnecting(port_));
    pollfd entry{fillers_.back(), POLLOUT, 0};
    poll(&entry, 1, 200);
  }
}

DeafPort::~DeafPort() {
  for (const int filler : fillers_) {
    close(filler);
  }
  close(listener_);
}

uint16_t UnusedPort() {
  uint16_t port = 0;
  close(Listen(1, &port));
  return port;
}

}  // namespace kavel::lidar::testing
