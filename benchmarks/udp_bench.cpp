// UDP packets of 1,200 bytes received and lost, at rising rates, beside a bare receive loop with
// the same receive buffer and one with the system's default. What the system grants is capped by
// net.core.rmem_max.
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "Source/socket_source.h"

namespace kavel::lidar {
namespace {

using Clock = std::chrono::steady_clock;

constexpr size_t kPacketSize = 1200;
constexpr int kLargeBuffer = 26'214'400;
constexpr std::chrono::milliseconds kSendingTime{500};
constexpr int32_t kSilenceUs = 100'000;

// Sends at an even rate for kSendingTime; 0 is as fast as it goes.
uint64_t SendPackets(uint16_t port, int64_t packets_per_s) {
  const int fd = socket(AF_INET, SOCK_DGRAM, 0);
  sockaddr_in peer{};
  peer.sin_family = AF_INET;
  peer.sin_port = htons(port);
  peer.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const std::vector<uint8_t> data(kPacketSize);
  uint64_t sent = 0;
  const Clock::time_point start = Clock::now();
  for (Clock::time_point now = start; now - start < kSendingTime; now = Clock::now()) {
    const double seconds = std::chrono::duration<double>(now - start).count();
    if (packets_per_s > 0 &&
        static_cast<double>(sent) > seconds * static_cast<double>(packets_per_s)) {
      std::this_thread::yield();
      continue;
    }
    if (sendto(fd, data.data(), data.size(), 0, reinterpret_cast<const sockaddr*>(&peer),
               sizeof peer) > 0) {
      ++sent;
    }
  }
  close(fd);
  return sent;
}

// Runs `receive`, which returns the packets of one call or -1 after a silence, against a sender.
template <typename Receive>
void Measure(benchmark::State& state, uint16_t port, Receive receive) {
  uint64_t sent = 0;
  uint64_t received = 0;
  for ([[maybe_unused]] auto _ : state) {
    std::atomic<bool> sending{true};
    std::thread sender([&] {
      sent += SendPackets(port, state.range(0));
      sending = false;
    });
    for (int count = 0; count >= 0 || sending; count = receive()) {
      if (count > 0) received += static_cast<uint64_t>(count);
    }
    sender.join();
  }
  const double seconds =
      std::chrono::duration<double>(kSendingTime).count() * static_cast<double>(state.iterations());
  state.counters["sent/s"] = static_cast<double>(sent) / seconds;
  state.counters["received/s"] = static_cast<double>(received) / seconds;
  state.counters["lost%"] =
      sent == 0 ? 0.0 : 100.0 * static_cast<double>(sent - received) / static_cast<double>(sent);
}

void BM_UdpSocketSource(benchmark::State& state) {
  SocketSource source(0, "127.0.0.1", "");
  if (!source.Open()) return state.SkipWithError("open");
  UdpPacket packet;
  Measure(state, source.BoundPort(), [&] {
    const int32_t count = source.Receive(packet, UdpPacket::kCapacity, 0, kSilenceUs);
    if (packet.timed_out != 0) return -1;
    return count > 0 ? 1 : 0;
  });
}

void BareLoop(benchmark::State& state, int buffer_size) {
  const int fd = socket(AF_INET, SOCK_DGRAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  const timeval silence{0, kSilenceUs};
  setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &silence, sizeof silence);
  if (buffer_size > 0) setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &buffer_size, sizeof buffer_size);
  if (bind(fd, reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
      getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    return state.SkipWithError("bind");
  }
  std::vector<uint8_t> buffer(UdpPacket::kCapacity);
  Measure(state, ntohs(address.sin_port),
          [&] { return recv(fd, buffer.data(), buffer.size(), 0) > 0 ? 1 : -1; });
  close(fd);
}

void BM_UdpBareLoop(benchmark::State& state) { BareLoop(state, kLargeBuffer); }
void BM_UdpBareLoopDefaultBuffer(benchmark::State& state) { BareLoop(state, 0); }

void Rates(benchmark::internal::Benchmark* bench) {
  for (const int64_t packets_per_s : {5'000, 20'000, 40'000, 80'000, 160'000, 0}) {
    bench->Arg(packets_per_s);
  }
  bench->ArgName("per_s")->Iterations(2)->UseRealTime()->Unit(benchmark::kMillisecond);
}
BENCHMARK(BM_UdpBareLoop)->Apply(Rates);
BENCHMARK(BM_UdpBareLoopDefaultBuffer)->Apply(Rates);
BENCHMARK(BM_UdpSocketSource)->Apply(Rates);

}  // namespace
}  // namespace kavel::lidar

BENCHMARK_MAIN();
