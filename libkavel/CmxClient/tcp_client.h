#pragma once

#include <cstdint>
#include <mutex>
#include <string>

#include "CmxClient/stream_transport.h"

namespace kavel::lidar {

/// A plain TCP stream over IPv4. Certificates are ignored. See `ClientBase` for the contract.
///
/// `Open`, and the open that `Send` and `Receive` try on a closed transport, give up after 5 s.
/// `TryOpen` fails also when the host port is taken: see `OpenFailure`. `Receive` is one receive of
/// the system, not a loop; `flags` other than `kPoll` are handed to it.
class TcpClient : public StreamTransport {
 public:
  std::string OpenFailure() override;

 protected:
  bool OpenPlainly() override;
  bool OpenWithin(uint16_t host_port, uint32_t timeout_s) override;
  int32_t Write(const uint8_t* data, uint16_t length, int32_t flags) override;
  int32_t Read(uint8_t* buffer, uint32_t length, int32_t flags) override;
  int32_t Poll(uint8_t* buffer, uint32_t length) override;
  const char* SlowReceiveText() const override { return "Receive executed"; }

 private:
  std::mutex failure_mutex_;
  std::string open_failure_;  // guarded by failure_mutex_
};

}  // namespace kavel::lidar
