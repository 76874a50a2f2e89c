#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "Platform/socket.h"

struct ssl_ctx_st;
struct ssl_st;

namespace kavel::lidar {

struct TlsFree {
  void operator()(ssl_ctx_st* context) const;
  void operator()(ssl_st* session) const;
};
using TlsContext = std::unique_ptr<ssl_ctx_st, TlsFree>;

/// How a step ended.
struct TlsStep {
  enum class End {
    kDone,
    kTimeIsUp,  ///< the session is as it was, unless something was being written
    kClosed,    ///< the peer has ended the stream, or the connection below it
    kFailed,
  };
  End end = End::kFailed;
  int32_t count = 0;         ///< of bytes, when it is done
  unsigned long reason = 0;  ///< why it failed, as OpenSSL numbers it; 0: the connection broke
};

/// The TLS steps over a connected socket, which stays the caller's and is made non-blocking. One
/// thread at a time. Every step has one limit, 0 for none, however many records it takes. Writing
/// to a broken connection raises no signal.
///
/// There are two ways in: `InitContext` and `Connect` check the peer after the handshake, and they
/// and the steps that return a bare count log what failed; `Handshake` leaves the checks to the
/// context, and what failed is told to the caller alone.
class TlsSession {
 public:
  using Clock = std::chrono::steady_clock;

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

  /// Handshake with a context that holds all that the peer has to fulfil.
  TlsStep Handshake(TlsContext context, SocketHandle socket, Clock::time_point deadline);

  /// Waits for what one record brings, up to `length` bytes.
  TlsStep Read(uint8_t* buffer, uint32_t length, uint32_t limit_ms);

  /// The same without waiting; `kTimeIsUp` when nothing is there.
  TlsStep ReadNow(uint8_t* buffer, uint32_t length);

  /// The protocol and the cipher that were agreed on, for the log.
  std::string Agreed() const;

  /// Count written, -1 for none.
  int32_t Write(const uint8_t* data, uint16_t length, uint32_t limit_ms);

  /// Waits for exactly `length` bytes: `length`, or -1 when fewer came (time-out, end, error).
  int32_t ReadExactly(uint8_t* buffer, uint32_t length, uint32_t limit_ms);

  /// Tells the peer, if there is a session, and frees session and context. To be called before the
  /// socket is closed.
  void Close();

 private:
  bool Begin(SocketHandle socket);
  template <typename Step>
  TlsStep Run(Clock::time_point deadline, bool waits, Step step);

  SocketHandle socket_ = kInvalidSocket;
  Clock::time_point deadline_;  ///< of the step that runs
  TlsContext context_;
  std::unique_ptr<ssl_st, TlsFree> session_;
};

}  // namespace kavel::lidar
