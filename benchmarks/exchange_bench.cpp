// Exchanges with a peer on loopback that sends every frame back, beside a bare ping-pong over the
// same kind of socket. On a machine with several cores mostly the wake-ups are measured: compare
// under `taskset -c 0`.

#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "CmxClient/cmx_client.h"
#include "CmxClient/tcp_ssl_client.h"

namespace kavel::lidar {
namespace {

using Bytes = std::vector<uint8_t>;

/// Sends back what it receives, to one client after another, as long as the program runs.
class EchoServer {
 public:
  static uint16_t Port() {
    static const EchoServer server;
    return server.port_;
  }

 private:
  EchoServer() : listener_(socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener_, generic, size) != 0 || listen(listener_, 4) != 0 ||
        getsockname(listener_, generic, &size) != 0) {
      std::abort();
    }
    port_ = ntohs(address.sin_port);
    std::thread([listener = listener_] { Serve(listener); }).detach();
  }

  static void Serve(int listener) {
    std::array<uint8_t, 4096> buffer;
    while (true) {
      const int peer = accept(listener, nullptr, nullptr);
      const int on = 1;
      setsockopt(peer, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
      ssize_t count = 0;
      while ((count = recv(peer, buffer.data(), buffer.size(), 0)) > 0) {
        if (send(peer, buffer.data(), static_cast<size_t>(count), MSG_NOSIGNAL) != count) break;
      }
      close(peer);
    }
  }

  int listener_;
  uint16_t port_ = 0;
};

constexpr size_t kPayloadSize = 64;

void BarePingPong(benchmark::State& state) {
  const int socket = tcp_open("127.0.0.1", EchoServer::Port());
  Bytes frame(8 + kPayloadSize, 0x5A);
  for (auto _ : state) {
    if (send(socket, frame.data(), frame.size(), MSG_NOSIGNAL) < 1) std::abort();
    for (size_t received = 0; received < frame.size();) {
      const ssize_t count = recv(socket, frame.data() + received, frame.size() - received, 0);
      if (count < 1) std::abort();
      received += static_cast<size_t>(count);
    }
  }
  close(socket);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BarePingPong)->UseRealTime();

void Query(benchmark::State& state, StaleInput mode) {
  CmxClient client("127.0.0.1", EchoServer::Port(), false, 0, 1, "", "", "", 500, 500, 5, 0);
  client.SetStaleInput(mode);
  const Bytes payload(kPayloadSize, 0x5A);
  Bytes result;
  // The first exchange after connecting waits for silence in either mode.
  if (!client.WaitUntilConnected() || client.QueryCommand(payload, result, 0x2A, false) != 0) {
    state.SkipWithError("no connection");
    return;
  }
  for (auto _ : state) {
    if (client.QueryCommand(payload, result, 0x2A, false) != 0) std::abort();
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK_CAPTURE(Query, after_trouble, StaleInput::kAfterTrouble)->UseRealTime();
BENCHMARK_CAPTURE(Query, always, StaleInput::kAlways)->UseRealTime()->Iterations(20);

}  // namespace
}  // namespace kavel::lidar
