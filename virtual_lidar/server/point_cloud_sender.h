#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "server/event_loop.h"
#include "server/unique_fd.h"

/// Where the point cloud goes and how fast.
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

/// Sends UDP packets of 1,200 bytes at a steady rate: "KPCL", a big-endian 32-bit sequence number
/// from 0, a big-endian 64-bit time in microseconds since the start, then sample points of eight
/// bytes (azimuth, channel, distance, intensity) that turn slowly. Packets that the system refuses
/// are skipped; their numbers are used up.
class PointCloudSender {
 public:
  static constexpr size_t kPacketSize = 1200;

  /// Throws std::system_error when there is no socket to be had.
  PointCloudSender(EventLoop* loop, const PointCloudTarget& target);
  ~PointCloudSender();
  PointCloudSender(const PointCloudSender&) = delete;
  PointCloudSender& operator=(const PointCloudSender&) = delete;

 private:
  void SendDue();
  void SendOne();

  EventLoop* loop_;
  PointCloudTarget target_;
  UniqueFd fd_;
  EventLoop::Clock::time_point start_;
  uint64_t sent_ = 0;
  EventLoop::TimerId timer_ = 0;
};
