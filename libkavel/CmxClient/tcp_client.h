#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>

#include "CmxClient/client_base.h"
#include "CmxClient/tcp_stream.h"

namespace kavel::lidar {

/// A plain TCP stream over IPv4. Certificates are ignored. See `ClientBase` for the contract of the
/// overridden operations.
///
/// Time-outs are 500 ms in both directions until they are set. They and the size of the receive
/// buffer are kept across a reconnection.
/// `Open`, and the open that `Send` and `Receive` try on a closed transport, give up after 5 s.
class TcpClient : public ClientBase {
 public:
  TcpClient() = default;

  bool Open(const std::string& ip, uint16_t port, bool auto_receive, const char* cert,
            const char* private_key, const char* ca) override;

  /// A `host_port` other than 0 is free again as soon as the transport is closed, which resets the
  /// connection. False also when that port is taken: see `OpenFailure`.
  bool TryOpen(uint16_t host_port, const std::string& ip, uint16_t port, bool auto_receive,
               const char* cert, const char* private_key, const char* ca,
               uint32_t timeout_s) override;

  void Close() override;
  bool IsOpened() override;
  int32_t Send(uint8_t* data, uint16_t length, int32_t flags) override;

  /// One receive of the system, not a loop; `flags` other than `kPoll` are handed to it.
  int32_t Receive(uint8_t* buffer, uint32_t length, int32_t flags) override;

  bool SetReceiveTimeout(uint32_t ms) override;
  int32_t SetTimeout(uint32_t recv_ms, uint32_t send_ms) override;
  void SetReceiveBufferSize(const uint32_t& bytes) override;
  void Interrupt() override;
  std::string OpenFailure() override;

 private:
  bool PlainOpen();
  bool EnsureOpen();
  int32_t Poll(uint8_t* buffer, uint32_t length);

  std::string lidar_ip_;
  uint16_t lidar_port_ = 0;
  StreamSocket socket_;
  std::atomic<uint8_t> opened_{0};
  std::mutex failure_mutex_;
  std::string open_failure_;  // guarded by failure_mutex_
};

}  // namespace kavel::lidar
