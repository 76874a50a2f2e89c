#include "CmxClient/tls_client.h"

#include <utility>

namespace kavel::lidar {

TlsClient::TlsClient(TlsIdentity identity) : identity_(std::move(identity)) {}

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

bool TlsClient::OpenPlainly() { return OpenWithin(0, 5); }

bool TlsClient::OpenWithin(uint16_t /*host_port*/, uint32_t /*timeout_s*/) {
  const std::lock_guard<std::mutex> lock(outcome_mutex_);
  open_failure_ = target().ip + " has to be identified by " + identity_.ca + ".";
  return false;
}

int32_t TlsClient::Write(const uint8_t* data, uint16_t length, int32_t /*flags*/) {
  return tls_.Write(data, length, SendTimeoutMs(handle()));
}

int32_t TlsClient::Read(uint8_t* buffer, uint32_t length, int32_t /*flags*/) {
  return tls_.ReadExactly(buffer, length, ReceiveTimeoutMs(handle()));
}

int32_t TlsClient::Poll(uint8_t* /*buffer*/, uint32_t /*length*/) { return -1; }

}  // namespace kavel::lidar
