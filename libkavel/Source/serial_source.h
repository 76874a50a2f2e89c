#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Platform/serial_port.h"
#include "Source/source.h"
#include "Wire/serial_stream.h"

namespace kavel::lidar {

/// What a serial line carries towards the tool. Any other value makes SerialSource::Open fail.
enum SerialReceiveType : int {
  kReceiveAnswersAndPoints = 0,  ///< UART: answers to commands between point-cloud frames
  kReceiveAnswers = 1,           ///< RS-485: answers to commands alone
};

/// Receive modes of a serial source.
enum SerialReceiveMode : int {
  kModePointCloud = 0,   ///< answers and point-cloud frames are handed out
  kModeCommands = 1,     ///< point-cloud frames are recognised and dropped
  kModeEmptyBuffer = 2,  ///< no mode: SetReceiveMode empties the buffer and changes nothing else
};

/// The receiving half of a serial line: a thread reads the port into a bounded buffer, finds the
/// frames amid noise, and keeps answers and point-cloud packets apart for their readers.
///
/// Thread-safe. A port that fails is closed by the receive thread, which then ends; waiting readers
/// return, and the lost handler is called.
class SerialSource : public Source {
 public:
  struct Counters {
    uint64_t bytes = 0;           ///< received
    uint64_t answers = 0;         ///< command and long frames found
    uint64_t points = 0;          ///< point-cloud frames found
    uint64_t skipped_bytes = 0;   ///< belonged to no frame
    uint64_t dropped_points = 0;  ///< frames that nobody fetched in time, or of an unknown version
  };

  /// Stores the values and opens nothing. `receive_type` is a SerialReceiveType.
  SerialSource(const std::string& port_name, uint32_t baud_rate_bps, int receive_type);
  ~SerialSource() override;

  /// Opens the port and starts the receive thread. False, with a log line, when the receive type is
  /// unknown or the port does not open; LastError() has the sentence for the user.
  bool Open() override;
  /// Ends the thread and frees the port; blocked readers return.
  void Close() override;
  bool IsOpened() override;

  /// Fetches the data of the next point-cloud frame, waiting up to `wait_us`.
  int32_t Receive(UdpPacket& packet, uint16_t length, int32_t flags, int32_t wait_us) override;
  /// Writes to the port, with a time-out of 500 ms without progress.
  int32_t Send(const uint8_t* data, uint16_t length, int32_t flags) override;

  /// Takes one answer of at most `max_size` bytes, waiting up to `timeout_ms`; a long frame whose
  /// beginning arrived in time also gets the time that the rest of it needs on the line, unless it
  /// stops coming. When no whole frame came, the bytes that did come are handed out, cut to
  /// `max_size`, so that the caller can tell a damaged answer from silence. Returns the byte count,
  /// or -1 when nothing came or the line was closed or interrupted.
  int32_t ReceiveBlock(std::vector<uint8_t>& block, size_t max_size, uint32_t timeout_ms);

  /// kModeEmptyBuffer empties the buffer of bytes received and not handed out, and nothing else.
  /// Any other mode is applied, and empties the buffer, resets the counters, discards the port's
  /// pending input and is remembered.
  void SetReceiveMode(int mode);
  int receive_mode() const;

  /// Wakes blocked readers for good, from any thread; they and all later ones return -1 until the
  /// source is opened anew.
  void Interrupt();

  /// Called once, on the receive thread, with a sentence for the user when the port is lost while
  /// open. The handler must not call Close or destroy the source. Set it before Open.
  void SetLostHandler(std::function<void(const std::string& reason)> handler);

  Counters GetCounters() const;
  /// Why the port did not open or was lost, as a sentence for the user; "" while nothing failed.
  std::string LastError() const;
  /// Changes the rate of the line, also for opening it anew; see SerialPort::SetBaudRate.
  bool SetBaudRate(uint32_t baud_rate_bps);
  /// The port below, for sending with another time-out than `Send` has.
  std::shared_ptr<SerialPort> port() const { return port_; }

 private:
  using Clock = std::chrono::steady_clock;

  void ReceivedThread();
  void TakeBytes(const uint8_t* data, size_t size);
  void SortFrame(SerialStreamFrame& frame);
  void KeepPointCloud(const std::vector<uint8_t>& frame);
  Clock::time_point EndsBy(Clock::time_point begins_by) const;
  int32_t TakeAnswer(std::vector<uint8_t>& block, size_t max_size);
  void SearchBehindBrokenFrame();
  void EmptyBuffer();
  void Stop();
  void StopLocked();

  const std::string port_name_;
  uint32_t baud_rate_bps_;  // guarded by lifecycle_mutex_
  const int receive_type_;
  const std::shared_ptr<SerialPort> port_;
  std::function<void(const std::string&)> lost_handler_;
  std::mutex lifecycle_mutex_;  ///< held while the thread is started or ended
  std::thread thread_;

  mutable std::mutex mutex_;
  std::condition_variable arrived_;
  SerialStream stream_;
  std::deque<std::vector<uint8_t>> answers_;
  std::deque<std::vector<uint8_t>> points_;
  Counters counters_;
  Clock::time_point last_byte_;
  std::string refusal_;  ///< why the source cannot work with any port
  int mode_ = kModePointCloud;
  bool running_ = false;
};

}  // namespace kavel::lidar
