// Under Wine, com_ports.py makes the pseudo-terminals and hands their far ends out over TCP.
#include <cstdio>
#include <cstdlib>

#include "support/pty_pair.h"

namespace kavel::lidar::testing {
namespace {

// As little as possible waits on the way: a line that nobody reads has to fill up.
constexpr int kHeldBytes = 4096;

void Require(bool condition, const char* what) {
  if (condition) {
    return;
  }
  std::fprintf(stderr, "%s: error %d\n", what, LastSocketError());
  std::abort();
}

sockaddr_in ComPorts() {
  const char* port = std::getenv("TEVRON_COM_PORTS");
  Require(port != nullptr, "TEVRON_COM_PORTS is not set; script/windows does that");
  sockaddr_in address{};
  MakeAddress("127.0.0.1", static_cast<uint16_t>(std::atoi(port)), &address);
  return address;
}

}  // namespace

PtyPair::PtyPair() : device_(SOCK_STREAM, IPPROTO_TCP) {
  const sockaddr_in address = ComPorts();
  SetSocketOption(device_.handle(), SOL_SOCKET, SO_RCVBUF, kHeldBytes);
  SetSocketOption(device_.handle(), IPPROTO_TCP, TCP_NODELAY, 1);
  Require(
      connect(device_.handle(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0,
      "no serial ports");
  for (char c = 0; c != '\n';) {
    Require(ReceiveBytes(device_.handle(), &c, 1, 0) == 1, "no serial port");
    if (c != '\n') {
      path_ += c;
    }
  }
}

PtyPair::~PtyPair() { HangUp(); }

void PtyPair::Write(const Bytes& bytes) const {
  size_t written = 0;
  while (written < bytes.size()) {
    const int count =
        SendBytes(device_.handle(), bytes.data() + written, bytes.size() - written, 0);
    Require(count > 0, "write to the serial line");
    written += static_cast<size_t>(count);
  }
}

Bytes PtyPair::Read(int timeout_ms) const {
  if (WaitReadable(device_.handle(), int64_t{timeout_ms} * 1000) <= 0) {
    return {};
  }
  Bytes bytes(4096);
  const int count = ReceiveBytes(device_.handle(), bytes.data(), bytes.size(), 0);
  bytes.resize(count > 0 ? static_cast<size_t>(count) : 0);
  return bytes;
}

// The line has hung up when its end of the connection is closed.
void PtyPair::HangUp() {
  if (!device_) {
    return;
  }
  shutdown(device_.handle(), SD_SEND);
  while (!Read(5000).empty()) {
  }
  device_.Reset();
}

}  // namespace kavel::lidar::testing
