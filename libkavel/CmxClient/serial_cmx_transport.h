#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "CmxClient/client_base.h"
#include "CmxClient/serial_client.h"

namespace kavel::lidar {

/// Lets a CmxClient of protocol 1 talk to a device on a serial line. Send takes one whole CMX
/// frame, repacks it as "$LDCMD," or, for a payload above 254 bytes, as "$LDOTA,", and runs the
/// exchange to its end; Receive hands out the answer as a CMX response, piece by piece as asked.
///
/// Used by one thread at a time, like every transport; Interrupt may come from any thread.
class SerialCmxTransport : public ClientBase {
 public:
  /// The client is open already: this transport opens nothing itself.
  explicit SerialCmxTransport(std::shared_ptr<SerialClient> client);

  /// True when the client is open; the arguments have no meaning on a serial line.
  bool Open(const std::string& ip, uint16_t port, bool auto_receive, const char* cert,
            const char* private_key, const char* ca) override;
  bool TryOpen(uint16_t host_port, const std::string& ip, uint16_t port, bool auto_receive,
               const char* cert, const char* private_key, const char* ca,
               uint32_t timeout_s) override;
  void Close() override;
  bool IsOpened() override;

  /// Returns `length` when the request left, whether an answer came or not; a short count when it
  /// is no whole CMX frame or the line did not take it.
  int32_t Send(uint8_t* data, uint16_t length, int32_t flags) override;

  /// The next bytes of the answer to the last Send, at most `length`; -1 at once when there are
  /// none. It never waits, since the exchange is over when Send returns.
  int32_t Receive(uint8_t* buffer, uint32_t length, int32_t flags) override;

  /// How long the next exchange waits for its answer.
  bool SetReceiveTimeout(uint32_t ms) override;
  int32_t SetTimeout(uint32_t recv_ms, uint32_t send_ms) override;
  /// Without effect: a serial source bounds its own buffer.
  void SetReceiveBufferSize(const uint32_t& bytes) override;
  void Interrupt() override;
  /// The frames of the line are shown, not those that it is handed.
  bool TakeSink(ByteSink* sink) override;
  std::string OpenFailure() override;

 private:
  bool Exchange(uint8_t cmd, const std::vector<uint8_t>& payload);
  void KeepShortAnswer(const std::vector<uint8_t>& block);
  void KeepLongAnswer(const std::vector<uint8_t>& block);

  const std::shared_ptr<SerialClient> client_;
  std::atomic<uint32_t> receive_timeout_ms_{500};
  ByteSink* sink_ = nullptr;
  std::vector<uint8_t> answer_;
  size_t handed_out_ = 0;
};

}  // namespace kavel::lidar
