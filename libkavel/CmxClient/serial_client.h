#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "CmxClient/byte_sink.h"
#include "CmxClient/ticket_mutex.h"
#include "Source/serial_source.h"
#include "Wire/ota_stream.h"

namespace kavel::lidar {

/// Results of a serial exchange.
inline constexpr int32_t kSerialNotReady = -1;   ///< port not open, or the send failed
inline constexpr int32_t kSerialBadAnswer = -2;  ///< the answer failed its checks
inline constexpr int32_t kSerialNoAnswer = -3;   ///< nothing came within the time-out

/// The longest block that an exchange of "$LDCMD," frames receives.
inline constexpr size_t kSerialBlockSize = 1500;

/// Request and answer over serial lines: requests leave by one, answers arrive by the same or by
/// another one. A line that only sends is read, too, which is how its loss is noticed.
///
/// Thread-safe: whole exchanges follow one another, in the order in which they were asked for.
/// Nothing throws.
class SerialClient {
 public:
  /// Both already open, or the client is never ready.
  SerialClient(std::shared_ptr<SerialSource> requests, std::shared_ptr<SerialSource> answers);
  /// Closes both lines.
  ~SerialClient();
  SerialClient(const SerialClient&) = delete;
  SerialClient& operator=(const SerialClient&) = delete;

  /// Both lines exist, are open and were not interrupted.
  bool IsOpen() const;

  /// Sends a "$LDCMD," request and waits up to `timeout_ms` for its answer. Returns 0 with the
  /// inner bytes (length byte, command, what follows) in `result`, or one of the results above with
  /// `result` untouched. A payload above kSerialMaxPayload is kSerialNotReady.
  int32_t SendCommand(uint8_t cmd, const std::vector<uint8_t>& payload,
                      std::vector<uint8_t>& result, uint32_t timeout_ms);

  /// Switches the device's mode (command 3, 3000 ms). Returns the device's status: 0 for success,
  /// any other positive value is its error; or one of the results above, kSerialBadAnswer also for
  /// an answer of another shape.
  int32_t SwitchMode(uint8_t mode, uint8_t sub_mode);

  /// The exchange below the frames, with a payload of up to kOtaMaxPayload bytes: sends it in the
  /// frame that its length needs and leaves in `block` what came back, which is not checked, save
  /// that long answers to other requests are passed over, and those of other commands as long as
  /// one of `cmd` may come. Returns 0, kSerialNotReady or
  /// kSerialNoAnswer. `sink` (may be null) is told instead of the client's own.
  int32_t Exchange(uint8_t cmd, const std::vector<uint8_t>& payload, uint32_t timeout_ms,
                   std::vector<uint8_t>& block, ByteSink* sink);

  /// Changes the rates of both lines between two exchanges; harmless when they run at them already.
  /// Returns 0, or kSerialNotReady when a line is not open or cannot take its rate: LastError()
  /// tells. A client of one line goes by `requests_bps`.
  int32_t SetBaudRate(uint32_t requests_bps, uint32_t answers_bps);

  /// Longest wait for the port to take bytes, without progress; 500 ms at first.
  void SetSendTimeout(uint32_t timeout_ms) { send_timeout_ms_ = timeout_ms; }

  /// Who is told of the bytes of SendCommand and SwitchMode from the next exchange on; null for
  /// nobody.
  void SetByteSink(std::shared_ptr<ByteSink> sink);

  /// Why a port was lost, as a sentence for the user; "" while there was no failure.
  std::string LastError() const;

  /// What came on the line of the answers. Does not wait for an exchange.
  SerialSource::Counters AnswerCounters() const;

  /// The line for one user alone, for what is not one request and one answer. Exchanges of others
  /// wait until it is gone, however long that takes, and then follow in the order in which they
  /// were asked for; Interrupt and Close work as ever. One thread uses it, the one that made it.
  /// What is sent and received so is kept from the byte sink.
  class Lease {
   public:
    /// Waits for its turn, and forgets what was received until then.
    explicit Lease(SerialClient& client);

    bool IsOpen() const { return client_.IsOpen(); }
    /// Rates of the two lines in bit/s.
    uint32_t requests_bps() const;
    uint32_t answers_bps() const;

    /// Sends a long frame, however short the payload, and returns its number, which the answer
    /// repeats; kOtaUnnumbered when it did not leave whole. `stall_ms` is the longest wait for the
    /// port to take bytes, without progress.
    uint8_t Send(uint8_t cmd, const std::vector<uint8_t>& payload, uint32_t stall_ms);

    /// Waits until the deadline for the next answer in a long frame, whatever it answers. One that
    /// is here already is handed out after the deadline, too. False when none came, at once when
    /// the line was lost or interrupted.
    bool Receive(OtaAnswer* answer, std::chrono::steady_clock::time_point deadline);

   private:
    SerialClient& client_;
    const std::lock_guard<TicketMutex> turn_;
  };

  /// Ends a running exchange from any thread. The client stays closed from then on.
  void Interrupt();
  /// Interrupts, then frees the ports.
  void Close();

 private:
  int32_t Run(uint8_t cmd, const std::vector<uint8_t>& payload, size_t max_block,
              uint32_t timeout_ms, std::vector<uint8_t>& block, ByteSink* sink);
  uint8_t NextNumber();
  bool SendFrame(const std::vector<uint8_t>& frame, uint32_t stall_ms);
  bool ReceiveAnswer(uint8_t cmd, uint8_t number, size_t max_block, uint32_t timeout_ms,
                     std::vector<uint8_t>& block);

  const std::shared_ptr<SerialSource> requests_;
  const std::shared_ptr<SerialSource> answers_;
  TicketMutex mutex_{Turn::kLine};
  uint8_t last_number_ = kOtaUnnumbered;  // guarded by mutex_
  std::mutex sink_mutex_;
  std::shared_ptr<ByteSink> sink_;  // guarded by sink_mutex_
  std::atomic<uint32_t> send_timeout_ms_{500};
  std::atomic<bool> interrupted_{false};
};

}  // namespace kavel::lidar
