#include "server/tls_stream.h"

#include <openssl/err.h>
#include <openssl/ssl.h>

#include <algorithm>
#include <cerrno>
#include <climits>

#include "CmxClient/tls_certificate.h"
#include "Platform/socket.h"

namespace {

using kavel::lidar::BrokenPipeGuard;

int Clamped(size_t size) { return static_cast<int>(std::min<size_t>(size, INT_MAX)); }

std::string ReasonText(unsigned long error) {
  const int reason = ERR_GET_LIB(error) == ERR_LIB_SSL ? ERR_GET_REASON(error) : 0;
  switch (reason) {
    case SSL_R_WRONG_VERSION_NUMBER:
    case SSL_R_HTTP_REQUEST:
    case SSL_R_HTTPS_PROXY_REQUEST:
      return "it does not speak TLS";
    case SSL_R_PEER_DID_NOT_RETURN_A_CERTIFICATE:
      return "it shows no certificate";
    default:
      break;
  }
  const char* text = ERR_reason_error_string(error);
  return text != nullptr ? text : "no reason given";
}

}  // namespace

kavel::lidar::TlsContext MakeTlsServer(const kavel::lidar::TlsIdentity& files,
                                       std::string* failure) {
  kavel::lidar::TlsContext context = kavel::lidar::MakeTlsContext(files, failure);
  if (!context) {
    return nullptr;
  }
  SSL_CTX_set_session_cache_mode(context.get(), SSL_SESS_CACHE_OFF);
  SSL_CTX_set_options(context.get(), SSL_OP_NO_TICKET);
  SSL_CTX_set_num_tickets(context.get(), 0);
  SSL_CTX_set_mode(context.get(),
                   SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
  if (!files.ca.empty()) {
    SSL_CTX_set_verify(context.get(), SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, nullptr);
  }
  return context;
}

std::string ShownCertificate(const kavel::lidar::TlsContext& server) {
  const X509* certificate = SSL_CTX_get0_certificate(server.get());
  if (certificate == nullptr) {
    return {};
  }
  const kavel::lidar::TlsCertificate shown = kavel::lidar::Describe(*certificate);
  return shown.subject + ", SHA-256 " + shown.sha256;
}

TlsStream::TlsStream(const kavel::lidar::TlsContext& server, int socket)
    : ByteStream(socket, socket), session_(SSL_new(server.get())) {
  if (session_) {
    SSL_set_fd(session_.get(), socket);
    SSL_set_accept_state(session_.get());
  }
}

TlsStream::~TlsStream() {
  if (session_ && failure_.empty() && SSL_is_init_finished(session_.get()) == 1) {
    const BrokenPipeGuard guard;
    SSL_shutdown(session_.get());
  }
  ERR_clear_error();
}

ssize_t TlsStream::Read(uint8_t* data, size_t size) {
  const ssize_t got = Run([&](ssl_st* session) { return SSL_read(session, data, Clamped(size)); });
  reads_need_room_ = session_ && SSL_want_write(session_.get());
  return got;
}

ssize_t TlsStream::Write(const uint8_t* data, size_t size) {
  return Run([&](ssl_st* session) { return SSL_write(session, data, Clamped(size)); });
}

// The result as read(2) and write(2) have it. The guard changes `errno`, which is set behind it.
template <typename Step>
ssize_t TlsStream::Run(Step step) {
  int error = SSL_ERROR_SYSCALL;
  unsigned long reason = 0;
  if (session_) {
    const BrokenPipeGuard guard;
    ERR_clear_error();
    const int result = step(session_.get());
    if (result > 0) {
      return result;
    }
    error = SSL_get_error(session_.get(), result);
    reason = ERR_peek_error();
  }
  if (error == SSL_ERROR_WANT_READ || error == SSL_ERROR_WANT_WRITE) {
    errno = EAGAIN;
    return -1;
  }
  if (error == SSL_ERROR_ZERO_RETURN ||
      ERR_GET_REASON(reason) == SSL_R_UNEXPECTED_EOF_WHILE_READING) {
    return 0;
  }
  if (error == SSL_ERROR_SSL) {
    failure_ = ReasonText(reason);
  }
  errno = ECONNRESET;
  return -1;
}
