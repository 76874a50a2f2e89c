#include <chrono>
#include <thread>

#include "Source/serial_source.h"
#include "fuzz/fuzz_targets.h"
#include "fuzz/serial_bytes.h"
#include "support/pty_pair.h"

using namespace kavel::lidar;

namespace {

constexpr size_t kMostBytes = 4000;  // a pseudo-terminal takes so many at once

/// One line for all inputs, opened once, and so fast that a long frame is not waited for.
struct Line {
  testing::PtyPair pty;
  SerialSource source{pty.path(), 1000000000, kReceiveAnswersAndPoints};
  Line() { Require(source.Open(), "a pseudo-terminal opens"); }
};

void WaitForBytes(const SerialSource& source, uint64_t count) {
  for (int i = 0; i < 50000 && source.GetCounters().bytes < count; ++i) {
    std::this_thread::sleep_for(std::chrono::microseconds(20));
  }
  Require(source.GetCounters().bytes == count, "every byte arrives");
}

}  // namespace

void FuzzSerialSource(FuzzInput input) {
  static Line line;
  SerialSource& source = line.source;
  const uint8_t how = input.Byte();
  const size_t portion = input.Byte() + size_t{1};
  source.SetReceiveMode((how & 1) != 0 ? kModeCommands : kModePointCloud);
  const Bytes bytes = SerialBytes(&input, kMostBytes);
  const size_t first = (how & 2) != 0 ? std::min(portion, bytes.size()) : bytes.size();
  line.pty.Write(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(first)));
  WaitForBytes(source, first);
  if ((how & 4) != 0) {
    source.SetReceiveMode(kModeEmptyBuffer);
  }
  line.pty.Write(Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(first), bytes.end()));
  WaitForBytes(source, bytes.size());

  const size_t most = (how & 8) != 0 ? portion : size_t{1500};
  Bytes block;
  size_t answers = 0;
  while (source.ReceiveBlock(block, most, 0) > 0) {
    Require(!block.empty() && block.size() <= most, "an answer is as long as it may be");
    ++answers;
    if (answers > source.GetCounters().answers) {
      break;  // what came and is no frame is handed out each time
    }
  }
  UdpPacket packet;
  size_t points = 0;
  for (int32_t size = 0;
       (size = source.Receive(packet, 1500, 0, 0)) > 0 || packet.timed_out == 0;) {
    Require(size >= 0 && static_cast<size_t>(size) <= UdpPacket::kCapacity, "a packet is bounded");
    ++points;
  }
  const SerialSource::Counters counters = source.GetCounters();
  Require(points + counters.dropped_points == counters.points,
          "every point cloud is accounted for");
  Require(counters.skipped_bytes <= bytes.size(), "no more is skipped than came");
  Require(source.IsOpened(), "nothing that arrives closes the line");
}
