// Exchanges over a pseudo-terminal, beside an echo of the same number of bytes without frames. Both
// mostly measure how fast the two threads wake one another: compare them pinned to one core
// (taskset -c 0).
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "CmxClient/cmx_client.h"
#include "CmxClient/serial_cmx_transport.h"
#include "Wire/serial_frame.h"
#include "support/pty_pair.h"

namespace kavel::lidar {
namespace {

using Bytes = std::vector<uint8_t>;
using testing::PtyPair;

constexpr uint32_t kBaudRate = 3125000;
constexpr uint32_t kTimeoutMs = 1000;

// Answers what arrives, from a thread of its own.
class Device {
 public:
  explicit Device(std::function<Bytes(const Bytes&)> answer) : answer_(std::move(answer)) {
    thread_ = std::thread([this] {
      while (running_) {
        const Bytes request = line.Read(50);
        if (!request.empty()) line.Write(answer_(request));
      }
    });
  }
  ~Device() {
    running_ = false;
    thread_.join();
  }

  PtyPair line;

 private:
  std::function<Bytes(const Bytes&)> answer_;
  std::atomic<bool> running_{true};
  std::thread thread_;
};

// A request arrives whole here: it is short, and it is written in one go.
Bytes AnswerFrame(const Bytes& frame) {
  uint8_t cmd = 0;
  Bytes payload;
  if (!ParseSerialRequest(frame, &cmd, &payload)) return {};
  return BuildSerialAnswer(cmd, 0, payload);
}

void BM_PtyBareEcho(benchmark::State& state) {
  Device device([](const Bytes& bytes) { return bytes; });
  const int fd = open(device.line.path().c_str(), O_RDWR | O_NOCTTY);
  Bytes bytes(19 + static_cast<size_t>(state.range(0)));
  for ([[maybe_unused]] auto _ : state) {
    if (write(fd, bytes.data(), bytes.size()) < 0) state.SkipWithError("write");
    for (size_t received = 0; received < bytes.size();) {
      const ssize_t count = read(fd, bytes.data(), bytes.size() - received);
      if (count <= 0) return state.SkipWithError("read");
      received += static_cast<size_t>(count);
    }
  }
  close(fd);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PtyBareEcho)->Arg(0)->Arg(200)->UseRealTime();

struct Line {
  Line()
      : device(AnswerFrame),
        source(std::make_shared<SerialSource>(device.line.path(), kBaudRate, kReceiveAnswers)) {
    source->Open();
    client = std::make_shared<SerialClient>(source, source);
  }
  Device device;
  std::shared_ptr<SerialSource> source;
  std::shared_ptr<SerialClient> client;
};

void BM_PtySerialClient(benchmark::State& state) {
  Line line;
  const Bytes payload(static_cast<size_t>(state.range(0)));
  Bytes inner;
  for ([[maybe_unused]] auto _ : state) {
    if (line.client->SendCommand(0x40, payload, inner, kTimeoutMs) != 0) {
      return state.SkipWithError("exchange");
    }
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PtySerialClient)->Arg(0)->Arg(200)->UseRealTime();

void BM_PtyCmxClient(benchmark::State& state) {
  Line line;
  CmxClient client(std::make_shared<SerialCmxTransport>(line.client), 1, kTimeoutMs, kTimeoutMs);
  client.SetStaleInput(StaleInput::kAfterTrouble);
  const Bytes payload(static_cast<size_t>(state.range(0)));
  Bytes result;
  for ([[maybe_unused]] auto _ : state) {
    if (client.QueryCommand(payload, result, 0x40, false) != 0) {
      return state.SkipWithError("exchange");
    }
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PtyCmxClient)->Arg(0)->Arg(200)->UseRealTime();

void BM_BuildAndParseFrame(benchmark::State& state) {
  const Bytes payload(static_cast<size_t>(state.range(0)), 0x5A);
  uint8_t cmd = 0;
  Bytes back;
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(ParseSerialRequest(BuildSerialFrame(0x40, payload), &cmd, &back));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_BuildAndParseFrame)->Arg(0)->Arg(200);

}  // namespace
}  // namespace kavel::lidar
