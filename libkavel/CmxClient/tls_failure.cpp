#include "CmxClient/tls_failure.h"

#include <openssl/err.h>
#include <openssl/ssl.h>

namespace kavel::lidar {
namespace {

/// The alert with which the peer ended the stream; -1 when that is not how it ended.
int AlertOf(const TlsStep& step) {
  const int reason = ERR_GET_REASON(step.reason);
  const bool is_alert = ERR_GET_LIB(step.reason) == ERR_LIB_SSL && reason > SSL_AD_REASON_OFFSET &&
                        reason <= SSL_AD_REASON_OFFSET + UINT8_MAX;
  return step.end == TlsStep::End::kFailed && is_alert ? reason - SSL_AD_REASON_OFFSET : -1;
}

}  // namespace

std::string AlertText(const TlsStep& step) {
  const int alert = AlertOf(step);
  switch (alert) {
    case -1:
      return "";
    case SSL_AD_CERTIFICATE_REQUIRED:
      return "it asks for a certificate of this side, and none is set";
    case SSL_AD_PROTOCOL_VERSION:
      return "it does not speak TLS 1.2 or newer";
    case SSL_AD_BAD_CERTIFICATE:
    case SSL_AD_UNSUPPORTED_CERTIFICATE:
    case SSL_AD_CERTIFICATE_REVOKED:
    case SSL_AD_CERTIFICATE_EXPIRED:
    case SSL_AD_CERTIFICATE_UNKNOWN:
    case SSL_AD_UNKNOWN_CA:
    case SSL_AD_ACCESS_DENIED:
      return std::string("it does not accept the certificate of this side (") +
             SSL_alert_desc_string_long(alert) + ')';
    default:
      return std::string("it ended the TLS link with the alert \"") +
             SSL_alert_desc_string_long(alert) + '"';
  }
}

std::string HandshakeFailureText(const TlsStep& step, bool shows_certificate) {
  if (step.end == TlsStep::End::kTimeIsUp) {
    return "it did not finish the TLS handshake in time; it may speak no TLS";
  }
  if (step.end == TlsStep::End::kClosed || step.reason == 0) {
    return "it closed the connection in the TLS handshake; it may speak no TLS";
  }
  if (AlertOf(step) == SSL_AD_HANDSHAKE_FAILURE && !shows_certificate) {
    return "it refused the TLS handshake; it may ask for a certificate of this side, and none is "
           "set";
  }
  if (std::string text = AlertText(step); !text.empty()) {
    return text;
  }
  const int reason = ERR_GET_REASON(step.reason);
  if (ERR_GET_LIB(step.reason) == ERR_LIB_SSL) {
    switch (reason) {
      case SSL_R_WRONG_VERSION_NUMBER:
      case SSL_R_HTTP_REQUEST:
        return "it answers without TLS";
      case SSL_R_UNSUPPORTED_PROTOCOL:
      case SSL_R_WRONG_SSL_VERSION:
        return "it does not speak TLS 1.2 or newer";
      default:
        break;
    }
  }
  const char* text = ERR_reason_error_string(step.reason);
  return std::string("the TLS handshake failed: ") + (text != nullptr ? text : "no reason given");
}

}  // namespace kavel::lidar
