#include "CmxClient/tls_session.h"

#include <openssl/err.h>
#include <openssl/ssl.h>

#include <algorithm>
#include <cerrno>

#include "Log/logger.h"

namespace kavel::lidar {
namespace {

bool Fail(const char* what) {
  KAVEL_LOG(kError, "%s", what);
  ERR_clear_error();
  return false;
}

// A peer that sends without end keeps OpenSSL reading, which looks at no clock by itself.
long RefuseLateReads(BIO* bio, int operation, const char* /*data*/, size_t /*size*/, int /*argi*/,
                     long /*argl*/, int result, size_t* /*processed*/) {
  using Clock = std::chrono::steady_clock;
  const auto* deadline = reinterpret_cast<const Clock::time_point*>(BIO_get_callback_arg(bio));
  return operation == BIO_CB_READ && Clock::now() >= *deadline ? -1 : result;
}

std::chrono::steady_clock::time_point DeadlineAfter(uint32_t limit_ms) {
  constexpr std::chrono::hours kForEver{10'000};
  const auto now = std::chrono::steady_clock::now();
  return limit_ms == 0 ? now + kForEver : now + std::chrono::milliseconds(limit_ms);
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

// Repeats an operation until it is done, has failed or the time is up. Its result, below 1 when it
// was not done.
template <typename Step>
int TlsSession::Run(Clock::time_point deadline, Step step) {
  const BrokenPipeGuard guard;
  deadline_ = deadline;
  while (true) {
    ERR_clear_error();
    errno = 0;
    const int result = step(session_.get());
    const int wish = SSL_get_error(session_.get(), result);
    const auto left =
        std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now()).count();
    if (result > 0 || left <= 0 || (wish != SSL_ERROR_WANT_READ && wish != SSL_ERROR_WANT_WRITE)) {
      return result;
    }
    const int ready =
        wish == SSL_ERROR_WANT_READ ? WaitReadable(socket_, left) : WaitWritable(socket_, left);
    if (ready < 1) {
      return result;
    }
  }
}

bool TlsSession::Connect(SocketHandle socket, uint32_t limit_ms) {
  session_.reset(context_ ? SSL_new(context_.get()) : nullptr);
  if (!session_) {
    return Fail("create ssl failed");
  }
  socket_ = socket;
  SetNonBlocking(socket, true);
  SSL_set_fd(session_.get(), static_cast<int>(socket));
  BIO_set_callback_ex(SSL_get_rbio(session_.get()), RefuseLateReads);
  BIO_set_callback_arg(SSL_get_rbio(session_.get()), reinterpret_cast<char*>(&deadline_));
  if (Run(DeadlineAfter(limit_ms), SSL_connect) != 1) {
    return Fail("connect ssl failed");
  }
  if (SSL_get_verify_result(session_.get()) != X509_V_OK) {
    return Fail("verify ssl failed");
  }
  return true;
}

int32_t TlsSession::Write(const uint8_t* data, uint16_t length, uint32_t limit_ms) {
  if (!session_) {
    return -1;
  }
  const int written = Run(DeadlineAfter(limit_ms),
                          [&](ssl_st* session) { return SSL_write(session, data, length); });
  return written > 0 ? written : -1;
}

int32_t TlsSession::ReadExactly(uint8_t* buffer, uint32_t length, uint32_t limit_ms) {
  if (!session_) {
    return -1;
  }
  const auto deadline = DeadlineAfter(limit_ms);
  uint32_t total = 0;
  while (total < length) {
    const int read = Run(deadline, [&](ssl_st* session) {
      const uint32_t missing = std::min<uint32_t>(length - total, INT32_MAX);
      return SSL_read(session, buffer + total, static_cast<int>(missing));
    });
    if (read < 1) {
      Fail("ssl receive failed");
      return -1;
    }
    total += static_cast<uint32_t>(read);
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
