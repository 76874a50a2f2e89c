#include "CmxClient/tls_client.h"

#include <chrono>
#include <utility>

#include "CmxClient/tls_failure.h"
#include "CmxClient/tls_peer_check.h"
#include "Log/logger.h"
#include "Platform/key_file.h"

namespace kavel::lidar {
namespace {

constexpr uint32_t kPlainOpenLimitS = 5;
constexpr const char* kInterrupted = "Connecting was ended.";

}  // namespace

TlsClient::TlsClient(TlsIdentity identity) : identity_(std::move(identity)) {
  const std::string warning = identity_.key.empty() ? "" : KeyFileWarning(identity_.key);
  if (!warning.empty()) {
    KAVEL_LOG(kWarning, "%s", warning.c_str());
  }
}

std::string TlsClient::OpenFailure() {
  const std::lock_guard<std::mutex> lock(outcome_mutex_);
  return open_failure_;
}

std::optional<TlsCertificate> TlsClient::Certificate() const {
  const std::lock_guard<std::mutex> lock(outcome_mutex_);
  return certificate_;
}

void TlsClient::Close() {
  tls_.Close();
  StreamTransport::Close();
}

bool TlsClient::OpenPlainly() { return OpenWithin(0, kPlainOpenLimitS); }

bool TlsClient::OpenWithin(uint16_t host_port, uint32_t timeout_s) {
  TlsPeerCheck check(identity_, target().ip);
  std::string failure = OpenWith(&check, host_port, timeout_s);
  const bool is_open = failure.empty();
  if (!is_open) {
    Close();
  } else if (identity_.ca.empty() && identity_.pinned_sha256.empty()) {
    identity_.pinned_sha256 = check.shown()->sha256;
  }
  TellOutcome(std::move(failure), check.shown());
  return is_open;
}

// "" when the transport is open.
std::string TlsClient::OpenWith(TlsPeerCheck* check, uint16_t host_port, uint32_t timeout_s) {
  const auto deadline = TlsSession::Clock::now() + std::chrono::seconds(timeout_s);
  may_try_again_ = false;
  std::string failure;
  TlsContext context = MakeTlsContext(identity_, &failure);
  if (!context) {
    return failure;
  }
  const std::string& pin = identity_.pinned_sha256;
  if (!pin.empty() && NormalSha256(pin).empty()) {
    return '"' + pin + "\" is no SHA-256 fingerprint: that is 64 hexadecimal digits.";
  }
  StreamRequest request;
  request.ip = target().ip;
  request.port = target().port;
  request.host_port = host_port;
  request.timeout_us = int64_t{timeout_s} * 1000000;
  UniqueSocket socket = TryConnect(request, &interrupted(), &failure);
  if (!socket) {
    may_try_again_ = true;
    return failure;
  }
  if (!Adopt(std::move(socket)) || !check->JoinTo(context)) {
    return kInterrupted;
  }
  const TlsStep step = tls_.Handshake(std::move(context), handle(), deadline);
  if (interrupted()) {
    return kInterrupted;
  }
  if (step.end != TlsStep::End::kDone) {
    may_try_again_ = step.reason == 0;
    return About(check->refusal().empty() ? HandshakeFailureText(step, !identity_.cert.empty())
                                          : check->refusal());
  }
  MarkOpen();
  KAVEL_LOG(kInfo, "TLS with IP %s port %u: %s, certificate %s", request.ip.c_str(),
            unsigned{request.port}, tls_.Agreed().c_str(), check->shown()->sha256.c_str());
  return "";
}

std::string TlsClient::About(const std::string& what) const {
  return target().ip + ", port " + std::to_string(target().port) + ": " + what + '.';
}

// An attempt that is repeated until it succeeds tells the log once why it does not; one that was
// ended on purpose is no fault.
void TlsClient::TellOutcome(std::string failure, std::optional<TlsCertificate> shown) {
  const std::lock_guard<std::mutex> lock(outcome_mutex_);
  if (!failure.empty() && failure != open_failure_ && !interrupted()) {
    KAVEL_LOG(kError, "%s", failure.c_str());
  }
  open_failure_ = std::move(failure);
  certificate_ = std::move(shown);
}

int32_t TlsClient::Write(const uint8_t* data, uint16_t length, int32_t /*flags*/) {
  return tls_.Write(data, length, SendTimeoutMs(handle()));
}

int32_t TlsClient::Read(uint8_t* buffer, uint32_t length, int32_t /*flags*/) {
  const TlsStep step = tls_.Read(buffer, length, ReceiveTimeoutMs(handle()));
  if (step.end == TlsStep::End::kClosed) {
    KAVEL_LOG(kError, "Connection closed by peer");
  }
  return CountOf(step);
}

int32_t TlsClient::Poll(uint8_t* buffer, uint32_t length) {
  return EnsureOpen() ? CountOf(tls_.ReadNow(buffer, length)) : -1;
}

// What `Receive` returns for a step.
int32_t TlsClient::CountOf(const TlsStep& step) {
  switch (step.end) {
    case TlsStep::End::kDone:
      return step.count;
    case TlsStep::End::kClosed:
      return 0;
    case TlsStep::End::kTimeIsUp:
      return -1;
    default:
      break;
  }
  const std::string alert = AlertText(step);
  if (alert.empty()) {
    KAVEL_LOG(kError, "Receive failed, TLS error: %lx", step.reason);
  } else {
    TellOutcome(About(alert), Certificate());
  }
  return -1;
}

}  // namespace kavel::lidar
