#pragma once

#include <memory>
#include <string>

#include "CmxClient/tls_identity.h"
#include "server/byte_stream.h"

/// The device's side of TLS for every connection of its life: its certificate and key, and with a
/// `ca` also that a client has to show a certificate by it. No session is ever taken up again, so
/// that every client is asked. A pin means nothing here. None, with a sentence in *failure, when a
/// file is of no use.
kavel::lidar::TlsContext MakeTlsServer(const kavel::lidar::TlsIdentity& files,
                                       std::string* failure);

/// "CN=lidar, SHA-256 " and the fingerprint of the certificate that such a server shows.
std::string ShownCertificate(const kavel::lidar::TlsContext& server);

/// The plain bytes of one client's TLS connection. The handshake is part of reading: until it is
/// made, there is nothing to read, and a client that never makes it holds nobody up.
class TlsStream : public ByteStream {
 public:
  /// `server` has to be one of `MakeTlsServer`.
  TlsStream(const kavel::lidar::TlsContext& server, int socket);
  /// Tells the client that nothing follows.
  ~TlsStream() override;

  ssize_t Read(uint8_t* data, size_t size) override;
  ssize_t Write(const uint8_t* data, size_t size) override;
  ssize_t WriteBack(const uint8_t* data, size_t size) override { return Write(data, size); }
  bool ReadsNeedRoom() const override { return reads_need_room_; }
  std::string Failure() const override { return failure_; }

 private:
  template <typename Step>
  ssize_t Run(Step step);

  std::unique_ptr<ssl_st, kavel::lidar::TlsFree> session_;
  bool reads_need_room_ = false;
  std::string failure_;
};
