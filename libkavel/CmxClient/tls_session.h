#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "Platform/socket.h"

struct ssl_ctx_st;
struct ssl_st;

namespace kavel::lidar {

/// The TLS steps over a connected socket, which stays the caller's and is made non-blocking. One
/// thread at a time. Every step logs what failed and has one limit, 0 for none, however many
/// records it takes. Writing to a broken connection raises no signal.
class TlsSession {
 public:
  TlsSession();
  ~TlsSession();
  TlsSession(const TlsSession&) = delete;
  TlsSession& operator=(const TlsSession&) = delete;

  /// Makes the context. Paths name PEM files, "" for none. `ca` is what the peer's certificate is
  /// checked against; `cert` and `private_key`, both given, are shown to the peer and make the
  /// handshake itself fail for a peer that does not verify.
  bool InitContext(const std::string& cert, const std::string& private_key, const std::string& ca);

  /// Handshake. True once the peer's certificate has been verified; without a `ca` that holds its
  /// issuer that fails. Needs a context.
  bool Connect(SocketHandle socket, uint32_t limit_ms);

  /// Count written, -1 for none.
  int32_t Write(const uint8_t* data, uint16_t length, uint32_t limit_ms);

  /// Waits for exactly `length` bytes: `length`, or -1 when fewer came (time-out, end, error).
  int32_t ReadExactly(uint8_t* buffer, uint32_t length, uint32_t limit_ms);

  /// Tells the peer, if there is a session, and frees session and context. To be called before the
  /// socket is closed.
  void Close();

 private:
  struct Free {
    void operator()(ssl_ctx_st* context) const;
    void operator()(ssl_st* session) const;
  };

  using Clock = std::chrono::steady_clock;

  template <typename Step>
  int Run(Clock::time_point deadline, Step step);

  SocketHandle socket_ = kInvalidSocket;
  Clock::time_point deadline_;  ///< of the step that runs
  std::unique_ptr<ssl_ctx_st, Free> context_;
  std::unique_ptr<ssl_st, Free> session_;
};

}  // namespace kavel::lidar
