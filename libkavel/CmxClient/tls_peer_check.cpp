#include "CmxClient/tls_peer_check.h"

#include <openssl/evp.h>
#include <openssl/ssl.h>
#include <openssl/x509_vfy.h>

#include <utility>

namespace kavel::lidar {
namespace {

// What security level 2 asks of every key. OpenSSL looks at those of a chain that it checks alone.
constexpr int kLeastKeyBits = 112;

bool HasWeakKey(const X509& certificate) {
  const EVP_PKEY* key = X509_get0_pubkey(&certificate);
  return key == nullptr || EVP_PKEY_get_security_bits(key) < kLeastKeyBits;
}

}  // namespace

TlsPeerCheck::TlsPeerCheck(TlsIdentity identity, std::string ip)
    : identity_(std::move(identity)), ip_(std::move(ip)) {}

bool TlsPeerCheck::JoinTo(const TlsContext& context) {
  SSL_CTX_set_verify(context.get(), SSL_VERIFY_PEER, nullptr);
  SSL_CTX_set_cert_verify_callback(context.get(), Decide, this);
  X509_VERIFY_PARAM* const asked = SSL_CTX_get0_param(context.get());
  // Whatever stands in the file of the CA vouches, also an intermediate one without its root.
  return X509_VERIFY_PARAM_set_flags(asked, X509_V_FLAG_PARTIAL_CHAIN) == 1 &&
         X509_VERIFY_PARAM_set1_ip_asc(asked, ip_.c_str()) == 1;
}

int TlsPeerCheck::Decide(x509_store_ctx_st* store, void* check) {
  auto* self = static_cast<TlsPeerCheck*>(check);
  self->shown_ = Describe(*X509_STORE_CTX_get0_cert(store));
  self->refusal_ = self->RefusalOf(store);
  return self->refusal_.empty() ? 1 : 0;
}

// Leaves in the store what the lidar is told of it.
std::string TlsPeerCheck::RefusalOf(x509_store_ctx_st* store) const {
  const std::string pinned = NormalSha256(identity_.pinned_sha256);
  if (!identity_.pinned_sha256.empty() && shown_->sha256 != pinned) {
    X509_STORE_CTX_set_error(store, X509_V_ERR_CERT_REJECTED);
    return "it shows another certificate than the one that it is known by (SHA-256 " +
           shown_->sha256 + " in place of " + pinned + ')';
  }
  if (HasWeakKey(*X509_STORE_CTX_get0_cert(store))) {
    X509_STORE_CTX_set_error(store, X509_V_ERR_EE_KEY_TOO_SMALL);
    return "the key of its certificate is too weak";
  }
  if (identity_.ca.empty()) {
    X509_STORE_CTX_set_error(store, X509_V_OK);
    return "";
  }
  if (X509_verify_cert(store) == 1) {
    return "";
  }
  return RefusalFor(X509_STORE_CTX_get_error(store), X509_STORE_CTX_get_error_depth(store));
}

std::string TlsPeerCheck::RefusalFor(int error, int depth) const {
  const bool is_lidars = depth == 0;
  switch (error) {
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
      return "its certificate is self-signed and not the one in " + identity_.ca;
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
    case X509_V_ERR_CERT_SIGNATURE_FAILURE:
      return "its certificate was not made by the CA in " + identity_.ca + " but by " +
             shown_->issuer;
    case X509_V_ERR_IP_ADDRESS_MISMATCH:
      return "its certificate does not name the address " + ip_ +
             " (an IP entry of its subject alternative names)";
    case X509_V_ERR_CERT_HAS_EXPIRED:
      return is_lidars ? "its certificate expired on " + shown_->valid_until
                       : "a certificate that vouches for its own has expired";
    case X509_V_ERR_CERT_NOT_YET_VALID:
      return (is_lidars ? "its certificate is not valid before " + shown_->valid_from
                        : std::string("a certificate that vouches for its own is not valid yet")) +
             "; look at the clock of this computer";
    default:
      return std::string("its certificate is not accepted: ") +
             X509_verify_cert_error_string(error);
  }
}

}  // namespace kavel::lidar
