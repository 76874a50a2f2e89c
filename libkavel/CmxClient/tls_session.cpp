#include "CmxClient/tls_session.h"

#include <openssl/err.h>
#include <openssl/ssl.h>

#include <cerrno>

#include "Log/logger.h"

namespace kavel::lidar {
namespace {

bool Fail(const char* what) {
  KAVEL_LOG(kError, "%s", what);
  ERR_clear_error();
  return false;
}

}  // namespace

void TlsSession::Free::operator()(ssl_ctx_st* context) const { SSL_CTX_free(context); }

void TlsSession::Free::operator()(ssl_st* session) const { SSL_free(session); }

TlsSession::TlsSession() = default;

TlsSession::~TlsSession() { Close(); }

bool TlsSession::InitContext(const std::string& cert, const std::string& private_key,
                             const std::string& ca) {
  OPENSSL_init_ssl(OPENSSL_INIT_LOAD_SSL_STRINGS | OPENSSL_INIT_LOAD_CRYPTO_STRINGS, nullptr);
  OPENSSL_init_crypto(OPENSSL_INIT_ADD_ALL_CIPHERS | OPENSSL_INIT_ADD_ALL_DIGESTS, nullptr);
  context_.reset(SSL_CTX_new(TLS_client_method()));
  if (!context_) {
    return Fail("create SSL_CTX failed");
  }
  if (!ca.empty()) {
    KAVEL_LOG(kInfo, "ca path: %s", ca.c_str());
    if (SSL_CTX_load_verify_locations(context_.get(), ca.c_str(), nullptr) != 1) {
      return Fail("load ca failed,please check ca file path");
    }
  }
  if (cert.empty() || private_key.empty()) {
    return true;
  }
  KAVEL_LOG(kInfo, "cert path: %s,\nprivate_key path: %s", cert.c_str(), private_key.c_str());
  SSL_CTX_set_verify(context_.get(), SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, nullptr);
  if (SSL_CTX_use_certificate_file(context_.get(), cert.c_str(), SSL_FILETYPE_PEM) != 1) {
    return Fail("load cert file failed,please check cert file path");
  }
  if (SSL_CTX_use_PrivateKey_file(context_.get(), private_key.c_str(), SSL_FILETYPE_PEM) != 1) {
    return Fail("load private key file failed,please check private key file path");
  }
  if (SSL_CTX_check_private_key(context_.get()) != 1) {
    return Fail("check private key failed");
  }
  return true;
}

bool TlsSession::Connect(SocketHandle socket) {
  const BrokenPipeGuard guard;
  session_.reset(context_ ? SSL_new(context_.get()) : nullptr);
  if (!session_) {
    return Fail("create ssl failed");
  }
  SSL_set_fd(session_.get(), static_cast<int>(socket));
  if (SSL_connect(session_.get()) != 1) {
    return Fail("connect ssl failed");
  }
  if (SSL_get_verify_result(session_.get()) != X509_V_OK) {
    return Fail("verify ssl failed");
  }
  return true;
}

int32_t TlsSession::Write(const uint8_t* data, uint16_t length) {
  if (!session_) {
    return -1;
  }
  const BrokenPipeGuard guard;
  ERR_clear_error();
  const int written = SSL_write(session_.get(), data, length);
  return written > 0 ? written : -1;
}

int32_t TlsSession::ReadExactly(uint8_t* buffer, uint32_t length) {
  if (!session_) {
    return -1;
  }
  const BrokenPipeGuard guard;
  uint32_t total = 0;
  while (total < length) {
    ERR_clear_error();
    errno = 0;
    const int read = SSL_read(session_.get(), buffer + total, static_cast<int>(length - total));
    if (read == 0) {
      break;
    }
    if (read < 0 && errno == EINTR) {
      continue;
    }
    if (read < 0) {
      Fail("ssl receive failed");
      return -1;
    }
    total += static_cast<uint32_t>(read);
  }
  if (total < length) {
    Fail("ssl receive failed");
    return -1;
  }
  return static_cast<int32_t>(total);
}

void TlsSession::Close() {
  if (session_ && SSL_is_init_finished(session_.get()) == 1) {
    const BrokenPipeGuard guard;
    SSL_shutdown(session_.get());
    ERR_clear_error();
  }
  session_.reset();
  context_.reset();
}

}  // namespace kavel::lidar
