// Firmware on its way: over a network beside bare lock-step sending of the same frames ("ratio", to
// be at least 0.85; the median of many turns, with both ends on one processor), over a serial line
// beside what the line can carry ("line_share", at least 0.9), and the memory that it takes beside
// the image ("beside_kib", at most 1024, the device included).

#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <netinet/tcp.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <deque>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "CmxClient/cmx_client.h"
#include "CmxClient/file_transfer.h"
#include "CmxClient/firmware_stream_client.h"
#include "CmxClient/tcp_ssl_client.h"
#include "Wire/big_endian.h"
#include "Wire/file_piece.h"
#include "support/pty_pair.h"

namespace kavel::lidar {
namespace {

using Bytes = std::vector<uint8_t>;
using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr size_t kLargeImage = size_t{16} * 1024 * 1024;

bool ReadWhole(int socket, uint8_t* buffer, size_t size) {
  return recv(socket, buffer, size, MSG_WAITALL) == static_cast<ssize_t>(size);
}

/// Accepts every command, of any number of clients, as long as the program runs.
class Lidar {
 public:
  Lidar() : listener_(socket(AF_INET, SOCK_STREAM, 0)) {
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
    std::thread([listener = listener_] {
      while (true) {
        const int peer = accept(listener, nullptr, nullptr);
        std::thread(Serve, peer).detach();
      }
    }).detach();
  }
  uint16_t port() const { return port_; }

 private:
  static void Serve(int peer) {
    const int on = 1;
    setsockopt(peer, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    Bytes frame(8);
    while (ReadWhole(peer, frame.data(), 8)) {
      Bytes payload(ReadBigEndian32(frame.data() + 4));
      if (!payload.empty() && !ReadWhole(peer, payload.data(), payload.size())) break;
      WriteBigEndian32(frame.data() + 4, 0);
      if (send(peer, frame.data(), 8, MSG_NOSIGNAL) != 8) break;
    }
    close(peer);
  }

  int listener_;
  uint16_t port_ = 0;
};

void LockStep(int socket, const std::vector<Bytes>& frames) {
  uint8_t answer[8];
  for (const Bytes& frame : frames) {
    if (send(socket, frame.data(), frame.size(), MSG_NOSIGNAL) < 1) std::abort();
    if (!ReadWhole(socket, answer, sizeof answer)) std::abort();
  }
}

bool Transfer(CmxClient& client, const Bytes& image) {
  return TransferFile(client, image, kCmdFirmwarePiece, false, nullptr, nullptr) == 0;
}

/// Keeps the calling thread, and those that it starts meanwhile, on the processor that it is on.
/// Where the system puts the two ends of an exchange weighs more than anything that is measured.
class OneProcessor {
 public:
  OneProcessor() {
    sched_getaffinity(0, sizeof before_, &before_);
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(sched_getcpu(), &one);
    if (sched_setaffinity(0, sizeof one, &one) != 0) std::abort();
  }
  ~OneProcessor() { sched_setaffinity(0, sizeof before_, &before_); }
  OneProcessor(const OneProcessor&) = delete;
  OneProcessor& operator=(const OneProcessor&) = delete;

 private:
  cpu_set_t before_{};
};

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// By turns, so that both meet the same machine; the median, since others use it as well.
void BM_TransferBesideLockStep(benchmark::State& state) {
  const OneProcessor both_ends;
  const Lidar lidar;
  const Bytes image(size_t{1024} * 1024, 0x5A);
  std::vector<Bytes> frames;
  for (size_t number = 1; number <= FilePieceCount(image.size()); ++number) {
    frames.push_back(
        BuildCmxFrame(kCmxHeader1, kCmdFirmwarePiece, 0, BuildFilePiece(image, number)));
  }
  const int bare = tcp_open("127.0.0.1", lidar.port());
  const int on = 1;
  setsockopt(bare, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  CmxClient client("127.0.0.1", lidar.port(), false, 0, 1, "", "", "", 500, 500, 5, 0);
  client.SetStaleInput(StaleInput::kAfterTrouble);
  // The first exchange after connecting waits for silence.
  if (!client.WaitUntilConnected() || !Transfer(client, {1})) std::abort();
  std::vector<double> ratios;
  for ([[maybe_unused]] auto _ : state) {
    const auto start = Clock::now();
    LockStep(bare, frames);
    const auto middle = Clock::now();
    if (!Transfer(client, image)) std::abort();
    const Seconds transfer_time = Clock::now() - middle;
    ratios.push_back(Seconds(middle - start) / transfer_time);
    state.SetIterationTime(transfer_time.count());
  }
  close(bare);
  state.counters["ratio"] = Median(std::move(ratios));
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(image.size()));
}
BENCHMARK(BM_TransferBesideLockStep)->UseManualTime()->Iterations(61);

/// A device in upgrade mode on a line of so many baud (0: as fast as it goes), which takes every
/// piece. Each direction has a latency.
class PacedDevice {
 public:
  PacedDevice(uint32_t baud_rate, std::chrono::milliseconds latency)
      : baud_rate_(baud_rate), latency_(latency) {
    reader_ = std::thread([this] { Read(); });
    writer_ = std::thread([this] { Write(); });
  }
  ~PacedDevice() {
    running_ = false;
    due_.notify_all();
    reader_.join();
    writer_.join();
  }
  const std::string& path() const { return line_.path(); }

 private:
  struct Answer {
    Clock::time_point due;
    Bytes bytes;
  };

  Clock::duration LineTime(size_t bytes) const {
    const double bits = static_cast<double>(bytes) * 10;
    return std::chrono::duration_cast<Clock::duration>(
        Seconds(baud_rate_ == 0 ? 0 : bits / baud_rate_));
  }

  void Read() {
    SerialStream stream(SerialListener::kDevice);
    Clock::time_point through;  // when the last byte is off the line
    while (running_) {
      const Bytes bytes = line_.Read(20);
      through = std::max(through, Clock::now()) + LineTime(bytes.size());
      std::this_thread::sleep_until(through);
      stream.Append(bytes.data(), bytes.size());
      while (const auto frame = stream.Next()) {
        Take(frame->bytes, through + latency_);
      }
    }
  }

  void Take(const Bytes& frame, Clock::time_point arrival) {
    OtaRequest request;
    if (!ParseOtaFrame(frame, &request)) return;
    StreamPiece piece;
    OtaAnswer answer = {request.number, request.cmd, 0, {}};
    if (ParseStreamPiece(request.payload, &piece) == kAccepted) {
      answer.payload = BuildStreamAck(piece.number);
    }
    Bytes bytes = BuildOtaFrame(answer);
    const std::lock_guard<std::mutex> lock(mutex_);
    answers_.push_back({arrival + latency_ + LineTime(bytes.size()), std::move(bytes)});
    due_.notify_all();
  }

  void Write() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (running_) {
      if (answers_.empty()) {
        due_.wait_for(lock, std::chrono::milliseconds(20));
        continue;
      }
      const Answer answer = std::move(answers_.front());
      answers_.pop_front();
      lock.unlock();
      std::this_thread::sleep_until(answer.due);
      line_.Write(answer.bytes);
      lock.lock();
    }
  }

  testing::PtyPair line_;
  const uint32_t baud_rate_;
  const std::chrono::milliseconds latency_;
  std::mutex mutex_;
  std::condition_variable due_;
  std::deque<Answer> answers_;
  std::atomic<bool> running_{true};
  std::thread reader_;
  std::thread writer_;
};

bool Stream(const PacedDevice& device, uint32_t baud_rate, const Bytes& image) {
  const auto source = std::make_shared<SerialSource>(device.path(), baud_rate, kReceiveAnswers);
  source->Open();
  SerialClient client(source, source);
  return StreamFirmware(client, image, kApplicationImage, AfterImage::kStay, nullptr) == 0;
}

void BM_StreamAtLineRate(benchmark::State& state) {
  const auto baud_rate = static_cast<uint32_t>(state.range(0));
  const Bytes image(static_cast<size_t>(state.range(1)) * 1024, 0x5A);
  const PacedDevice device(baud_rate, std::chrono::milliseconds(16));
  Seconds time{0};
  for ([[maybe_unused]] auto _ : state) {
    const auto start = Clock::now();
    if (!Stream(device, baud_rate, image)) return state.SkipWithError("stream");
    time += Clock::now() - start;
  }
  const double sent = static_cast<double>(image.size()) * static_cast<double>(state.iterations());
  state.counters["line_share"] = sent * 10 / baud_rate / time.count();
}
BENCHMARK(BM_StreamAtLineRate)
    ->Args({115200, 64})
    ->Args({921600, 512})
    ->UseRealTime()
    ->Iterations(1);

// In KiB, of the whole program.
long MemoryNow(const std::string& which) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind(which, 0) == 0) return std::stol(line.substr(which.size()));
  }
  return 0;
}

template <class Send>
void MeasureMemory(benchmark::State& state, const Send& send) {
  for ([[maybe_unused]] auto _ : state) {
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << 5;  // forgets the peak of before
    const long before = MemoryNow("VmRSS:");
    if (!send()) return state.SkipWithError("not sent");
    state.counters["beside_kib"] = static_cast<double>(MemoryNow("VmHWM:") - before);
  }
}

void BM_MemoryOfATransfer(benchmark::State& state) {
  const Bytes image(kLargeImage, 0x5A);
  const Lidar lidar;
  CmxClient client("127.0.0.1", lidar.port(), false, 0, 1, "", "", "", 500, 500, 5, 0);
  client.SetStaleInput(StaleInput::kAfterTrouble);
  if (!client.WaitUntilConnected()) std::abort();
  MeasureMemory(state, [&] { return Transfer(client, image); });
}
BENCHMARK(BM_MemoryOfATransfer)->UseRealTime()->Iterations(1);

void BM_MemoryOfAStream(benchmark::State& state) {
  const Bytes image(kLargeImage, 0x5A);
  const PacedDevice device(0, std::chrono::milliseconds(0));
  MeasureMemory(state, [&] { return Stream(device, 3125000, image); });
}
BENCHMARK(BM_MemoryOfAStream)->UseRealTime()->Iterations(1);

}  // namespace
}  // namespace kavel::lidar
