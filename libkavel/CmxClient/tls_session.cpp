#include "CmxClient/tls_session.h"

#include <openssl/err.h>
#include <openssl/ssl.h>

#include <algorithm>
#include <utility>

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

auto ReadUpTo(uint8_t* buffer, uint32_t length) {
  return [=](ssl_st* session) {
    return SSL_read(session, buffer, static_cast<int>(std::min<uint32_t>(length, INT32_MAX)));
  };
}

// What stopped a step that neither is done nor goes on by waiting; `is_late`: past its deadline,
// so that a read may have been refused.
TlsStep Stopped(int error, bool is_late) {
  const int system_error = LastSocketError();
  const unsigned long reason = ERR_peek_last_error();
  ERR_clear_error();
  const bool has_ended = error == SSL_ERROR_ZERO_RETURN ||
                         ERR_GET_REASON(reason) == SSL_R_UNEXPECTED_EOF_WHILE_READING;
  if (has_ended) {
    return {TlsStep::End::kClosed};
  }
  if (error == SSL_ERROR_SSL) {
    return {TlsStep::End::kFailed, 0, reason};
  }
  if (is_late) {
    return {TlsStep::End::kTimeIsUp};
  }
  return {system_error == 0 ? TlsStep::End::kClosed : TlsStep::End::kFailed};
}

}  // namespace

void TlsFree::operator()(ssl_ctx_st* context) const { SSL_CTX_free(context); }

void TlsFree::operator()(ssl_st* session) const { SSL_free(session); }

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

// Repeats an operation until it is done, has failed or the time is up; once when it does not wait.
template <typename Step>
TlsStep TlsSession::Run(Clock::time_point deadline, bool waits, Step step) {
  if (!session_) {
    return {};
  }
  const BrokenPipeGuard guard;
  deadline_ = deadline;
  while (true) {
    ERR_clear_error();
    ClearSocketError();
    const int result = step(session_.get());
    if (result > 0) {
      return {TlsStep::End::kDone, result};
    }
    const int wish = SSL_get_error(session_.get(), result);
    const auto left =
        std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now()).count();
    if (wish != SSL_ERROR_WANT_READ && wish != SSL_ERROR_WANT_WRITE) {
      return Stopped(wish, left <= 0);
    }
    const bool is_ready = waits && left > 0 &&
                          (wish == SSL_ERROR_WANT_READ ? WaitReadable(socket_, left)
                                                       : WaitWritable(socket_, left)) == 1;
    if (!is_ready) {
      return {TlsStep::End::kTimeIsUp};
    }
  }
}

bool TlsSession::Begin(SocketHandle socket) {
  session_.reset(context_ ? SSL_new(context_.get()) : nullptr);
  if (!session_) {
    return false;
  }
  socket_ = socket;
  SetNonBlocking(socket, true);
  SSL_set_fd(session_.get(), static_cast<int>(socket));
  BIO_set_callback_ex(SSL_get_rbio(session_.get()), RefuseLateReads);
  BIO_set_callback_arg(SSL_get_rbio(session_.get()), reinterpret_cast<char*>(&deadline_));
  return true;
}

bool TlsSession::Connect(SocketHandle socket, uint32_t limit_ms) {
  if (!Begin(socket)) {
    return Fail("create ssl failed");
  }
  if (Run(DeadlineAfter(limit_ms), true, SSL_connect).end != TlsStep::End::kDone) {
    return Fail("connect ssl failed");
  }
  if (SSL_get_verify_result(session_.get()) != X509_V_OK) {
    return Fail("verify ssl failed");
  }
  return true;
}

TlsStep TlsSession::Handshake(TlsContext context, SocketHandle socket, Clock::time_point deadline) {
  session_.reset();
  context_ = std::move(context);
  return Begin(socket) ? Run(deadline, true, SSL_connect) : TlsStep{};
}

TlsStep TlsSession::Read(uint8_t* buffer, uint32_t length, uint32_t limit_ms) {
  return Run(DeadlineAfter(limit_ms), true, ReadUpTo(buffer, length));
}

TlsStep TlsSession::ReadNow(uint8_t* buffer, uint32_t length) {
  // A moment for a peer that sends records without content, which OpenSSL passes over by itself.
  constexpr std::chrono::milliseconds kMoment{10};
  return Run(Clock::now() + kMoment, false, ReadUpTo(buffer, length));
}

std::string TlsSession::Agreed() const {
  return session_ ? SSL_get_version(session_.get()) +
                        (' ' + std::string(SSL_get_cipher_name(session_.get())))
                  : "";
}

int32_t TlsSession::Write(const uint8_t* data, uint16_t length, uint32_t limit_ms) {
  const TlsStep step = Run(DeadlineAfter(limit_ms), true,
                           [&](ssl_st* session) { return SSL_write(session, data, length); });
  return step.end == TlsStep::End::kDone ? step.count : -1;
}

int32_t TlsSession::ReadExactly(uint8_t* buffer, uint32_t length, uint32_t limit_ms) {
  if (!session_) {
    return -1;
  }
  const auto deadline = DeadlineAfter(limit_ms);
  uint32_t total = 0;
  while (total < length) {
    const TlsStep step = Run(deadline, true, ReadUpTo(buffer + total, length - total));
    if (step.end != TlsStep::End::kDone) {
      Fail("ssl receive failed");
      return -1;
    }
    total += static_cast<uint32_t>(step.count);
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
