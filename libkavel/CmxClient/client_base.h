#pragma once

#include <cstdint>
#include <string>

namespace kavel::lidar {

class ByteSink;

/// A stream of bytes to one lidar: the seam under the command client.
///
/// Implementations never throw. One thread at a time uses a transport, save for `IsOpened`,
/// `OpenFailure` and `Interrupt`, which any thread may call at any time. `Send` and `Receive` on a
/// closed transport try one plain open first. The order of the first ten virtual operations is
/// fixed.
class ClientBase {
 public:
  /// A value for `flags` of `Receive`: take what is there without waiting.
  static constexpr int32_t kPoll = 255;

  virtual ~ClientBase() = default;

  /// Connects to `ip` (dotted IPv4) and `port`, waiting as long as the transport is ready to; true
  /// at once when already open to them. The three paths name PEM files (null or empty: none) and
  /// matter to TLS only. `auto_receive` is carried along without effect.
  virtual bool Open(const std::string& ip, uint16_t port, bool auto_receive, const char* cert,
                    const char* private_key, const char* ca) = 0;

  /// As `Open`, from the local port `host_port` (0: any), giving up after `timeout_s` seconds.
  virtual bool TryOpen(uint16_t host_port, const std::string& ip, uint16_t port, bool auto_receive,
                       const char* cert, const char* private_key, const char* ca,
                       uint32_t timeout_s) = 0;

  virtual void Close() = 0;
  virtual bool IsOpened() = 0;

  /// Sends `length` bytes in one go. Returns the count sent, -1 for none; anything but `length`
  /// means that the stream is damaged.
  virtual int32_t Send(uint8_t* data, uint16_t length, int32_t flags) = 0;

  /// Waits at most the receive time-out for up to `length` bytes. Returns their count, 0 when the
  /// peer has closed, -1 when none came. With `flags` equal to `kPoll` it does not wait.
  virtual int32_t Receive(uint8_t* buffer, uint32_t length, int32_t flags) = 0;

  /// Time-outs in milliseconds; 0 waits for ever. `SetTimeout` returns 0, or -1 on failure.
  virtual bool SetReceiveTimeout(uint32_t ms) = 0;
  virtual int32_t SetTimeout(uint32_t recv_ms, uint32_t send_ms) = 0;

  /// Grows the system's receive buffer to at least `bytes`; never shrinks it.
  virtual void SetReceiveBufferSize(const uint32_t& bytes) = 0;

  /// Ends this transport for good: a call that blocks on another thread returns soon and every
  /// later one fails. `Close` is still left to the using thread. No effect by default.
  virtual void Interrupt() {}

  /// Tells `sink` (null: nobody) of the next `Send` and its answer as they look on the line, when
  /// they do not travel there as they are handed over. False: they do, and the caller knows all.
  virtual bool TakeSink(ByteSink* /*sink*/) { return false; }

  /// A sentence for the user on why the last `TryOpen` failed; "" when it did not, or when nothing
  /// is known.
  virtual std::string OpenFailure() { return {}; }

  /// Whether another `TryOpen` may succeed where the last one failed, as it may while nobody
  /// answers. False for a peer that is there and is not the right one.
  virtual bool MayTryAgain() { return true; }
};

}  // namespace kavel::lidar
