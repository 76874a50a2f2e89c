#include "support/socket_peer.h"

#ifndef _WIN32
#include <poll.h>
#endif

#include <chrono>
#include <stdexcept>
#include <string>
#include <utility>

namespace kavel::lidar::testing {
namespace {

constexpr std::chrono::milliseconds kDripPause{2};
constexpr int64_t kFillingUs = 200'000;
constexpr int64_t kLookUs = 20'000;
constexpr uint32_t kPatienceMs = 5000;

#ifdef _WIN32
constexpr int kReset = WSAECONNRESET;
bool HasHungUp(SocketHandle socket) {
  WSAPOLLFD entry{socket, POLLRDNORM, 0};
  return WSAPoll(&entry, 1, 0) > 0 && (entry.revents & (POLLHUP | POLLERR)) != 0;
}
#else
constexpr int kReset = ECONNRESET;
bool HasHungUp(SocketHandle socket) {
  pollfd entry{socket, POLLRDHUP, 0};
  return poll(&entry, 1, 0) > 0;
}
#endif

sockaddr_in Loopback(uint16_t port) {
  sockaddr_in address{};
  MakeAddress("127.0.0.1", port, &address);
  return address;
}

UniqueSocket Listen(int backlog, uint16_t* port) {
  UniqueSocket listener(SOCK_STREAM, 0);
  sockaddr_in address = Loopback(0);
  socklen_t size = sizeof address;
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  if (bind(listener.handle(), generic, size) != 0 || listen(listener.handle(), backlog) != 0 ||
      getsockname(listener.handle(), generic, &size) != 0) {
    throw std::runtime_error("cannot listen on 127.0.0.1");
  }
  *port = ntohs(address.sin_port);
  return listener;
}

// None when the listener has gone.
UniqueSocket Accept(const UniqueSocket& listener) {
  StartSockets();
  UniqueSocket socket = UniqueSocket::Owning(accept(listener.handle(), nullptr, nullptr));
  SetSocketOption(socket.handle(), IPPROTO_TCP, TCP_NODELAY, 1);
  return socket;
}

bool Connect(const UniqueSocket& client, uint16_t port) {
  const sockaddr_in address = Loopback(port);
  return connect(client.handle(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

// It is under way then; the queue decides whether it ever ends.
UniqueSocket StartConnecting(uint16_t port) {
  UniqueSocket client(SOCK_STREAM, 0);
  SetNonBlocking(client.handle(), true);
  Connect(client, port);
  return client;
}

}  // namespace

TcpEnd TcpEnd::To(uint16_t port) {
  UniqueSocket client(SOCK_STREAM, 0);
  SetReceiveTimeoutMs(client.handle(), kPatienceMs);
  if (!Connect(client, port)) {
    throw std::runtime_error("cannot connect to port " + std::to_string(port));
  }
  return TcpEnd(std::move(client));
}

Bytes TcpEnd::Read(size_t size) {
  Bytes bytes(size);
  size_t received = 0;
  while (received < size) {
    const int count = ReceiveBytes(socket_.handle(), bytes.data() + received, size - received, 0);
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
    const int count = SendBytes(socket_.handle(), bytes.data() + sent, bytes.size() - sent, 0);
    if (count < 1) {
      return;
    }
    sent += static_cast<size_t>(count);
  }
}

void TcpEnd::Drip(const Bytes& bytes) {
  for (const uint8_t byte : bytes) {
    Send({byte});
    std::this_thread::sleep_for(kDripPause);
  }
}

bool TcpEnd::WaitForEnd() {
  uint8_t byte = 0;
  int count = 1;
  while (count > 0) {
    count = ReceiveBytes(socket_.handle(), &byte, 1, 0);
  }
  return count == -1 && LastSocketError() == kReset;
}

bool TcpEnd::EndsHere() {
  uint8_t byte = 0;
  const int count = ReceiveBytes(socket_.handle(), &byte, 1, 0);
  return count == 0 || (count < 0 && LastSocketError() == kReset);
}

void TcpEnd::Reset() { SetAbortiveClose(socket_.handle()); }

bool TcpEnd::Ended() { return HasHungUp(socket_.handle()); }

SocketPeer::SocketPeer(Script script)
    : script_(std::move(script)), listener_(Listen(8, &port_)), thread_([this] { Serve(); }) {}

SocketPeer::~SocketPeer() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ending_ = true;
    if (connection_ != kInvalidSocket) {
      ShutdownSocket(connection_);
    }
  }
  thread_.join();
}

void SocketPeer::Serve() {
  while (true) {
    // Nothing that every system has ends an accept, so none is begun in vain.
    const bool is_asked = WaitReadable(listener_.handle(), kLookUs) != 0;
    UniqueSocket socket = is_asked ? Accept(listener_) : UniqueSocket();
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      if (ending_ || (is_asked && !socket)) {
        return;
      }
      connection_ = socket.handle();
    }
    if (!socket) {
      continue;
    }
    TcpEnd connection(std::move(socket));
    script_(connection);
    const std::lock_guard<std::mutex> lock(mutex_);
    connection_ = kInvalidSocket;
  }
}

DeafPort::DeafPort() : listener_(Listen(0, &port_)) {
  // One more than the queue holds; what follows is left without an answer.
  for (int i = 0; i < 2; ++i) {
    fillers_.push_back(StartConnecting(port_));
    WaitWritable(fillers_.back().handle(), kFillingUs);
  }
}

uint16_t UnusedPort() {
  uint16_t port = 0;
  Listen(1, &port);
  return port;
}

}  // namespace kavel::lidar::testing
