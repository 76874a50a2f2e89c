#pragma once

#include <optional>
#include <string>

#include "CmxClient/tls_certificate.h"
#include "CmxClient/tls_identity.h"

struct x509_store_ctx_st;

namespace kavel::lidar {

/// Decides, in the middle of a handshake, whether the lidar's certificate is what an identity asks
/// for.
class TlsPeerCheck {
 public:
  /// `ip` is the lidar's address, which a certificate by the identity's CA has to name.
  TlsPeerCheck(TlsIdentity identity, std::string ip);
  TlsPeerCheck(const TlsPeerCheck&) = delete;
  TlsPeerCheck& operator=(const TlsPeerCheck&) = delete;

  /// Makes the handshakes of this context ask. The object has to outlive them. False when `ip` is
  /// no address.
  bool JoinTo(const TlsContext& context);

  /// What the lidar showed; none before it did.
  const std::optional<TlsCertificate>& shown() const { return shown_; }
  /// Why it was refused: what a sentence says of the lidar, such as "its certificate expired on
  /// 2026-01-01T00:00:00Z". "" when it was not.
  const std::string& refusal() const { return refusal_; }

 private:
  static int Decide(x509_store_ctx_st* store, void* check);
  std::string RefusalOf(x509_store_ctx_st* store) const;
  std::string RefusalFor(int error, int depth) const;

  const TlsIdentity identity_;
  const std::string ip_;
  std::optional<TlsCertificate> shown_;
  std::string refusal_;
};

}  // namespace kavel::lidar
