#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace kavel::lidar {

/// One received packet and where it came from.
struct UdpPacket {
  /// An Ethernet frame carries no more.
  static constexpr size_t kCapacity = 1500;

  std::array<uint8_t, kCapacity> data{};
  uint32_t ip = 0;        ///< sender's IPv4 address, network order; 0 for a serial line
  uint16_t port = 0;      ///< sender's port, host order; 0 for a serial line
  uint8_t timed_out = 0;  ///< 1 when a wait for data ended without data, else 0
};

/// Where point-cloud packets come from. One thread receives; see the derived classes for what may
/// be called beside it.
class Source {
 public:
  Source() = default;
  virtual ~Source() = default;
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;

  virtual bool Open() = 0;
  virtual void Close();
  virtual bool IsOpened() = 0;

  /// Puts the next packet, cut to `length` bytes and to the packet's capacity, into `packet`.
  /// Returns its byte count, 0 with `timed_out` set when `wait_us` microseconds passed without one,
  /// -1 when there is nothing or the source does not work.
  virtual int32_t Receive(UdpPacket& packet, uint16_t length, int32_t flags, int32_t wait_us) = 0;

  /// Sends bytes to the device. Returns the byte count or -1.
  virtual int32_t Send(const uint8_t* data, uint16_t length, int32_t flags) = 0;
};

}  // namespace kavel::lidar
