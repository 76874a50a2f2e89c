#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>

#include "Platform/socket.h"

/// What the plain and the encrypted transport have in common: making a TCP connection, and owning
/// it in a way that another thread can interrupt.
namespace kavel::lidar {

/// Whether an attempt goes on from any local port when the wanted one cannot be bound.
enum class BindFailure { kEndsAttempt, kTakesAnyPort };

/// A socket for a TCP stream that sends small frames at once; `kInvalidSocket` when there is none.
/// To be called after `StartSockets`.
SocketHandle CreateStream();

/// True for the errors of an attempt to connect that is still under way.
bool IsPending(int error);

/// Connects a blocking socket, as the system's own blocking call does, but gives up after
/// `timeout_us` or, soon, once `*interrupted` (may be null) is set. Returns 0, or why not:
/// `kSocketInProgress` when the time was up. The socket is blocking afterwards.
int ConnectWithin(SocketHandle socket, const sockaddr_in& address, int64_t timeout_us,
                  const std::atomic<bool>* interrupted);

/// One whole attempt: a new stream, bound to the local port `host_port` unless that is 0, connected
/// to `ip` and `port` within `timeout_s` seconds. Returns the connected socket, which the caller
/// closes (with `StopSockets` after it), or `kInvalidSocket` after logging why. `*failure` (may be
/// null) is then a sentence for the user when the local port was the cause.
SocketHandle TryConnect(uint16_t host_port, const std::string& ip, uint16_t port,
                        uint32_t timeout_s, BindFailure on_bind_failure,
                        const std::atomic<bool>* interrupted, std::string* failure);

/// Owns a transport's socket. One thread uses it; any thread may interrupt it.
class StreamSocket {
 public:
  StreamSocket() = default;
  ~StreamSocket();
  StreamSocket(const StreamSocket&) = delete;
  StreamSocket& operator=(const StreamSocket&) = delete;

  /// Takes over a connected socket and gives it the stored time-outs and receive buffer size.
  /// False, with the socket closed, after an interruption.
  bool Adopt(SocketHandle socket);

  void Close();

  /// Ends the connection for good, see `ClientBase::Interrupt`.
  void Interrupt();

  /// Gives the connection the stored time-outs again, after somebody set others for a moment.
  void ApplyTimeouts();

  SocketHandle handle() const { return handle_; }
  const std::atomic<bool>& interrupted() const { return interrupted_; }

  /// See `ClientBase`; without a connection they log that and fail.
  int32_t SetTimeout(uint32_t recv_ms, uint32_t send_ms);
  bool SetReceiveTimeout(uint32_t ms);
  void SetReceiveBufferSize(uint32_t bytes);

 private:
  bool IsConnected() const;
  void GrowReceiveBuffer();

  /// Held while the handle changes and while an interruption uses it, so that an interruption never
  /// hits a handle that the system has given to somebody else.
  std::mutex mutex_;
  SocketHandle handle_ = kInvalidSocket;
  std::atomic<bool> interrupted_{false};
  uint32_t receive_buffer_size_ = 4096;
  uint32_t recv_timeout_ms_ = 500;
  uint32_t send_timeout_ms_ = 500;
};

}  // namespace kavel::lidar
