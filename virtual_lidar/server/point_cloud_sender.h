#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "server/event_loop.h"

/// Where the point cloud goes over UDP and how fast.
struct PointCloudTarget {
  static constexpr uint32_t kDefaultRate = 100;
  static constexpr uint32_t kMaxRate = 200000;

  std::array<uint8_t, 4> address = {};  ///< in network order
  uint16_t port = 0;
  uint32_t packets_per_second = kDefaultRate;
};

/// Reads "IP:PORT[@RATE]".
/// Returns false with a sentence in *error when it is none.
bool ParsePointCloudTarget(const std::string& text, PointCloudTarget* target, std::string* error);

/// Makes packets of 1,200 bytes at a steady rate: "KPCL", a big-endian 32-bit sequence number from
/// 0, a big-endian 64-bit time in microseconds since the start, then sample points of eight bytes
/// (azimuth, channel, distance, intensity) that turn slowly. Packets that the way out does not take
/// are skipped; their numbers are used up.
class PointCloudSender {
 public:
  static constexpr size_t kPacketSize = 1200;
  /// A way out. Takes a packet or drops it, and never waits.
  using Outlet = std::function<void(const std::vector<uint8_t>& packet)>;

  /// `packets_per_second` is at least 1. The first packet leaves before this returns.
  PointCloudSender(EventLoop* loop, uint32_t packets_per_second, Outlet outlet);
  ~PointCloudSender();
  PointCloudSender(const PointCloudSender&) = delete;
  PointCloudSender& operator=(const PointCloudSender&) = delete;

 private:
  void SendDue();
  void SendOne();

  EventLoop* loop_;
  const uint32_t packets_per_second_;
  const Outlet outlet_;
  EventLoop::Clock::time_point start_;
  uint64_t sent_ = 0;
  EventLoop::TimerId timer_ = 0;
};

/// The way out over UDP. Throws std::system_error when there is no socket to be had.
PointCloudSender::Outlet UdpOutlet(const PointCloudTarget& target);
