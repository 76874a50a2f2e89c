#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "CmxClient/client_base.h"
#include "CmxClient/tcp_stream.h"
#include "CmxClient/tls_session.h"

namespace kavel::lidar {

/// Connects to `ip` and `port`, waiting as long as the system does, or until `*interrupted` (may be
/// null) is set. Returns the socket, or -1 after logging why.
int tcp_open(const char* ip, int port, const std::atomic<bool>* interrupted = nullptr);

/// As `TcpClient::TryOpen`, but a local port that cannot be bound is only logged. Returns the
/// connected socket or -1.
int tcp_try_open(uint16_t host_port, const char* ip, int port, uint32_t timeout_s,
                 const std::atomic<bool>* interrupted = nullptr);

/// A TLS stream over TCP. See `ClientBase` for the contract of the overridden operations.
///
/// `Open` and `TryOpen` never succeed, by decision: see `FinishOpen`. `StartTls` runs the same
/// steps over a socket that is connected already.
class TcpSslClient : public ClientBase {
 public:
  TcpSslClient() = default;
  ~TcpSslClient() override;

  bool Open(const std::string& ip, uint16_t port, bool auto_receive, const char* cert,
            const char* private_key, const char* ca) override;
  bool TryOpen(uint16_t host_port, const std::string& ip, uint16_t port, bool auto_receive,
               const char* cert, const char* private_key, const char* ca,
               uint32_t timeout_s) override;

  /// Makes the TLS context from PEM files ("" for none), see `TlsSession::InitContext`.
  bool InitSslClient(const std::string& cert, const std::string& private_key,
                     const std::string& ca);

  /// Takes over a connected socket and runs handshake and verification on it, which may take 5 s.
  /// On failure the transport is closed. Needs `InitSslClient`.
  bool StartTls(SocketHandle socket);

  void Close() override;
  bool IsOpened() override;
  int32_t Send(uint8_t* data, uint16_t length, int32_t flags) override;

  /// Exactly `length` bytes or -1. `kPoll` gives -1 at once.
  int32_t Receive(uint8_t* buffer, uint32_t length, int32_t flags) override;

  bool SetReceiveTimeout(uint32_t ms) override;
  int32_t SetTimeout(uint32_t recv_ms, uint32_t send_ms) override;
  void SetReceiveBufferSize(const uint32_t& bytes) override;
  void Interrupt() override;

 private:
  void Remember(const std::string& ip, uint16_t port, const char* cert, const char* private_key,
                const char* ca);
  bool PlainOpen();
  bool FinishOpen(SocketHandle socket);
  bool EnsureOpen();

  std::string lidar_ip_;
  uint16_t lidar_port_ = 0;
  StreamSocket socket_;
  TlsSession tls_;
  std::string cert_path_;
  std::string private_key_path_;
  std::string ca_path_;
  std::atomic<uint8_t> opened_{0};
};

}  // namespace kavel::lidar
