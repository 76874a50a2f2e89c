#include <QJsonArray>
#include <chrono>
#include <cmath>
#include <map>
#include <optional>
#include <utility>

#include "Platform/ipv4_text.h"
#include "Source/socket_source.h"
#include "Wire/point_packet.h"
#include "commands/commands.h"

namespace {

using Clock = std::chrono::steady_clock;
using kavel::lidar::UdpPacket;

/// Longest wait for a packet, and so for the end of the command.
constexpr int32_t kWaitUs = 100 * 1000;
constexpr int kMostFailuresInARow = 3;
/// A packet that comes late is no loss; a number far behind is that of a lidar that has restarted.
constexpr uint32_t kLatestPacket = 1000;

/// What came from one sender.
struct Arrivals {
  uint64_t packets = 0;
  uint64_t in_this_line = 0;
  std::optional<uint32_t> next;  ///< number that its next packet has
  int64_t lost = 0;

  void Take(const std::optional<uint32_t>& number) {
    ++packets;
    ++in_this_line;
    if (!number) {
      return;
    }
    const uint32_t ahead = next ? *number - *next : 0;
    const uint32_t behind = 0 - ahead;
    if (ahead != 0 && behind <= kLatestPacket) {
      lost -= lost > 0 ? 1 : 0;
      return;
    }
    lost += ahead < kMostLost ? ahead : 0;
    next = *number + 1;
  }

 private:
  static constexpr uint32_t kMostLost = 0x80000000U;
};

class UdpCount {
 public:
  void Take(const UdpPacket& packet, size_t size) {
    const auto* octets = reinterpret_cast<const uint8_t*>(&packet.ip);
    const std::string sender = kavel::lidar::DottedIpv4(octets) + ':' + std::to_string(packet.port);
    senders_[sender].Take(kavel::lidar::PointPacketNumber(packet.data.data(), size));
    ++packets_;
  }

  uint64_t packets() const { return packets_; }

  /// One line about the time since the last one.
  void Tell(Output& output) {
    const auto now = Clock::now();
    const std::chrono::duration<double> span = now - std::exchange(told_, now);
    const auto rate_of = [&span](uint64_t count) {
      return std::round(static_cast<double>(count) / std::max(span.count(), 0.001));
    };
    std::string line;
    QJsonArray list;
    uint64_t since = 0;
    int64_t lost = 0;
    bool is_numbered = false;
    for (auto& [name, arrivals] : senders_) {
      const QJsonValue lost_here =
          arrivals.next ? QJsonValue(static_cast<qint64>(arrivals.lost)) : QJsonValue();
      list.append(QJsonObject{{"address", QString::fromStdString(name)},
                              {"packets", static_cast<qint64>(arrivals.packets)},
                              {"rate", rate_of(arrivals.in_this_line)},
                              {"lost", lost_here}});
      line += (line.empty() ? "" : ", ") + name;
      since += std::exchange(arrivals.in_this_line, 0);
      lost += arrivals.lost;
      is_numbered = is_numbered || arrivals.next.has_value();
    }
    output.Line(std::to_string(packets_) + " packets, " +
                std::to_string(static_cast<uint64_t>(rate_of(since))) + " a second" +
                (is_numbered ? ", " + std::to_string(lost) + " lost" : "") +
                (line.empty() ? "" : ", from " + line));
    output.Object({{"time", TimeNowIso()},
                   {"packets", static_cast<qint64>(packets_)},
                   {"rate", rate_of(since)},
                   {"senders", list},
                   {"lost", is_numbered ? QJsonValue(static_cast<qint64>(lost)) : QJsonValue()}});
  }

 private:
  std::map<std::string, Arrivals> senders_;
  uint64_t packets_ = 0;
  Clock::time_point told_ = Clock::now();
};

}  // namespace

ExitCode RunWatchUdp(Context& context) {
  const Arguments& arguments = context.arguments;
  const std::string port = "UDP port " + std::to_string(arguments.udp_port);
  kavel::lidar::SocketSource source(static_cast<uint16_t>(arguments.udp_port), "", "");
  if (!source.Open()) {
    throw Failure(ExitCode::kNoConnection,
                  port + " cannot be opened; another program may be using it");
  }
  context.report.Note("Waiting for packets on UDP port " + std::to_string(source.BoundPort()) +
                      ".");
  const auto seconds = [](double value) {
    return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(value));
  };
  const Clock::time_point begin = Clock::now();
  const Clock::time_point end =
      arguments.duration_s ? begin + seconds(*arguments.duration_s) : Clock::time_point::max();
  Clock::time_point next_line = begin + seconds(arguments.interval_s);
  UdpCount count;
  UdpPacket packet;
  int failures = 0;
  while (Clock::now() < end) {
    context.interrupt.ThrowIfRaised();
    const int32_t size = source.Receive(packet, UdpPacket::kCapacity, 0, kWaitUs);
    failures = size < 0 ? failures + 1 : 0;
    if (failures == kMostFailuresInARow) {
      throw Failure(ExitCode::kBrokenOff, "receiving on " + port + " failed");
    }
    if (size >= 0 && packet.timed_out == 0) {
      count.Take(packet, static_cast<size_t>(size));
    }
    if (Clock::now() >= next_line && next_line < end) {
      count.Tell(context.output);
      next_line += seconds(arguments.interval_s);
    }
  }
  count.Tell(context.output);
  if (count.packets() == 0) {
    throw Failure(ExitCode::kNo, "no packet came on " + port);
  }
  return ExitCode::kDone;
}
