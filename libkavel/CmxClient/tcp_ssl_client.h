#pragma once

#include <cstdint>
#include <string>

#include "CmxClient/stream_transport.h"
#include "CmxClient/tcp_open.h"
#include "CmxClient/tls_session.h"

namespace kavel::lidar {

/// A TLS stream over TCP. See `ClientBase` for the contract. `Receive` gives exactly `length` bytes
/// or -1, and -1 at once for `kPoll`.
///
/// `Open` and `TryOpen` never succeed, by decision: see `FinishOpen`. `StartTls` runs the same
/// steps over a socket that is connected already.
class TcpSslClient : public StreamTransport {
 public:
  /// Makes the TLS context from PEM files ("" for none), see `TlsSession::InitContext`.
  bool InitSslClient(const std::string& cert, const std::string& private_key,
                     const std::string& ca);

  /// Takes over a connected socket and runs handshake and verification on it, within 5 s.
  /// On failure the transport is closed. Needs `InitSslClient`.
  bool StartTls(SocketHandle socket);

  void Close() override;

 protected:
  bool OpenPlainly() override;
  bool OpenWithin(uint16_t host_port, uint32_t timeout_s) override;
  int32_t Write(const uint8_t* data, uint16_t length, int32_t flags) override;
  int32_t Read(uint8_t* buffer, uint32_t length, int32_t flags) override;
  int32_t Poll(uint8_t* /*buffer*/, uint32_t /*length*/) override { return -1; }
  const char* SlowReceiveText() const override { return "Receive execu"; }

 private:
  bool PrepareTls();
  bool FinishOpen(UniqueSocket socket);

  TlsSession tls_;
};

}  // namespace kavel::lidar
