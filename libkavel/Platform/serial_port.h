#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

namespace kavel::lidar {

/// The path that a port is opened by. On Windows a port name gets the prefix "\\.\" (COM3 becomes
/// \\.\COM3); elsewhere a name without a slash is looked for under /dev (ttyUSB0 becomes
/// /dev/ttyUSB0) and a path stays as it is.
std::string SerialDevicePath(const std::string& port_name);

/// A serial port: raw bytes, 8 data bits, no parity, 1 stop bit, no flow control.
///
/// One thread may read while another writes and a third closes or interrupts. A port that fails
/// (adapter pulled, far end gone) is closed at the first error; LastError() then tells why. Nothing
/// throws.
class SerialPort {
 public:
  SerialPort();
  ~SerialPort();
  SerialPort(const SerialPort&) = delete;
  SerialPort& operator=(const SerialPort&) = delete;

  /// Opens the port for this program alone, sets the line and discards pending input. Any rate that
  /// the driver can reach is accepted, 3125000 baud included. Returns false when the port is
  /// missing, busy, not permitted, not a serial line, or cannot take the rate; LastError() is then
  /// a sentence that names the port and says what to do. A port that was open is closed first.
  bool Open(const std::string& port_name, uint32_t baud_rate_bps);

  /// Changes the rate of an open port, at once; harmless when it runs at that rate already. False
  /// when the port is not open, or cannot take the rate, which leaves it at the one it had;
  /// LastError() then tells as after Open.
  bool SetBaudRate(uint32_t baud_rate_bps);
  uint32_t baud_rate_bps() const;

  /// Frees the port at once; calls that are blocked in it return. Harmless on a closed port.
  void Close();
  bool IsOpen() const;

  /// Reads what is there, waiting up to `timeout_ms` for the first byte. Returns the byte count, 0
  /// after the time-out, -1 when the port is not open, was interrupted or has just failed.
  int32_t Read(uint8_t* buffer, size_t size, uint32_t timeout_ms);

  /// Writes all of `size` bytes. `timeout_ms` is the longest wait without progress, so that a long
  /// block on a slow line is not cut. Returns the bytes taken by the driver, which is less than
  /// `size` after a time-out, or -1 when the port is not open, was interrupted or has just failed.
  int32_t Write(const uint8_t* data, size_t size, uint32_t timeout_ms);

  /// Discards what has been received and not yet read. False when the port is not open.
  bool PurgeInput();

  /// Wakes blocked reads and writes, from any thread. The port stays open, but these and all later
  /// calls of them return -1 at once, until it is opened anew.
  void Interrupt();

  /// The last failure in words for the user, or an empty text.
  std::string LastError() const;
  /// The name given to the last Open.
  std::string name() const;

 private:
  struct Handle;

  std::shared_ptr<Handle> CurrentHandle() const;
  void Fail(const std::shared_ptr<Handle>& handle, const std::string& message);
  bool Refuse(const std::string& message);
  static void Release(Handle& handle);

  mutable std::mutex mutex_;
  std::shared_ptr<Handle> handle_;
  std::string name_;
  std::string last_error_;
  uint32_t baud_rate_bps_ = 0;
};

}  // namespace kavel::lidar
