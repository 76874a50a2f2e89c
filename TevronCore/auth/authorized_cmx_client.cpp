#include "auth/authorized_cmx_client.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "Wire/big_endian.h"

namespace {

constexpr size_t kRandomSize = 16;

}  // namespace

AuthorizedCmxClient::AuthorizedCmxClient(std::shared_ptr<kavel::lidar::CommandSender> client,
                                         AuthConfig config, bool reply_prefix,
                                         std::shared_ptr<kavel::lidar::LogSink> log,
                                         std::unique_ptr<IAuthAlgorithm> algorithm)
    : client_(std::move(client)),
      config_(std::move(config)),
      reply_prefix_(reply_prefix),
      log_(std::move(log)),
      algorithm_(std::move(algorithm)) {}

void AuthorizedCmxClient::Probe() {
  const std::lock_guard<kavel::lidar::TicketMutex> lock(mutex_);
  if (!config_.enabled) {
    return;
  }
  // Without a usable answer the device is taken to be protected: a refused command is the smaller
  // surprise. Only a device that answers too little is taken not to know about authentication.
  auth_required_ = true;
  if (algorithm_ == nullptr) {
    Log("AUTH: algorithm unavailable, conservatively require auth");
    return;
  }
  std::vector<uint8_t> reply;
  if (!Exchange(config_.probe_cmd, {}, Shown::kYes, &reply)) {
    Log("AUTH: probe failed, conservatively require auth");
    return;
  }
  const int64_t position = config_.probe_offset + static_cast<int64_t>(PrefixSize());
  const int64_t length = config_.probe_len;
  if (position < 0 || length < 1 || position + length > static_cast<int64_t>(reply.size())) {
    auth_required_ = false;
    Log("AUTH: probe payload too short, treat as not-required");
    return;
  }
  const uint8_t* bytes = reply.data() + position;
  const auto size = static_cast<size_t>(length);
  const uint64_t value = config_.probe_little_endian ? kavel::lidar::ReadLittleEndian(bytes, size)
                                                     : kavel::lidar::ReadBigEndian(bytes, size);
  auth_required_ = value == 1;
  Log("AUTH: probe value=" + std::to_string(value) +
      " required=" + (auth_required_ ? "true" : "false"));
}

int AuthorizedCmxClient::Gate(uint8_t cmd) {
  const std::lock_guard<kavel::lidar::TicketMutex> lock(mutex_);
  return GateLocked(cmd, Shown::kYes);
}

bool AuthorizedCmxClient::Handshake() {
  const std::lock_guard<kavel::lidar::TicketMutex> lock(mutex_);
  return HandshakeLocked(Shown::kYes);
}

bool AuthorizedCmxClient::IsOpen() { return client_->IsOpen(); }

int32_t AuthorizedCmxClient::QueryCommand(const std::vector<uint8_t>& payload,
                                          std::vector<uint8_t>& result, uint8_t cmd,
                                          bool with_header, int32_t* error) {
  const std::lock_guard<kavel::lidar::TicketMutex> lock(mutex_);
  return MayPass(cmd, Shown::kYes, error)
             ? client_->QueryCommand(payload, result, cmd, with_header, error)
             : -1;
}

int32_t AuthorizedCmxClient::QueryQuietly(const std::vector<uint8_t>& payload,
                                          std::vector<uint8_t>& result, uint8_t cmd,
                                          int32_t* error) {
  const std::lock_guard<kavel::lidar::TicketMutex> lock(mutex_);
  return MayPass(cmd, Shown::kNo, error) ? client_->QueryQuietly(payload, result, cmd, error) : -1;
}

int32_t AuthorizedCmxClient::QueryWithin(uint32_t timeout_ms, const std::vector<uint8_t>& payload,
                                         std::vector<uint8_t>& result, uint8_t cmd,
                                         int32_t* error) {
  const std::lock_guard<kavel::lidar::TicketMutex> lock(mutex_);
  return MayPass(cmd, Shown::kNo, error)
             ? client_->QueryWithin(timeout_ms, payload, result, cmd, error)
             : -1;
}

int32_t AuthorizedCmxClient::QueryLong(const std::vector<uint8_t>& payload,
                                       std::vector<uint8_t>& result, uint8_t cmd,
                                       kavel::lidar::ReplyProgress& progress, int32_t* error) {
  const std::lock_guard<kavel::lidar::TicketMutex> lock(mutex_);
  return MayPass(cmd, Shown::kNo, error) ? client_->QueryLong(payload, result, cmd, progress, error)
                                         : -1;
}

bool AuthorizedCmxClient::MayPass(uint8_t cmd, Shown shown, int32_t* error) {
  const bool passes = GateLocked(cmd, shown) == 0;
  if (!passes && error != nullptr) {
    *error = kavel::lidar::kAuthRefused;
  }
  return passes;
}

int AuthorizedCmxClient::GateLocked(uint8_t cmd, Shown shown) {
  if (!config_.enabled || !auth_required_ || config_.protected_cmds.count(cmd) == 0) {
    return 0;
  }
  if (algorithm_ == nullptr) {
    Log("AUTH: unavailable, reject protected cmd");
    return -1;
  }
  if (!HandshakeLocked(shown)) {
    Log("AUTH: handshake failed for protected cmd");
    return -1;
  }
  return 0;
}

bool AuthorizedCmxClient::HandshakeLocked(Shown shown) {
  std::vector<uint8_t> reply;
  if (!Exchange(config_.challenge_cmd, {}, shown, &reply)) {
    Log("AUTH: challenge failed");
    return false;
  }
  if (reply.size() < PrefixSize() + kRandomSize) {
    Log("AUTH: challenge payload too short for 16-byte random");
    return false;
  }
  const auto begin = reply.begin() + static_cast<std::ptrdiff_t>(PrefixSize());
  const std::vector<uint8_t> random(begin, begin + kRandomSize);
  // Meant: a challenge of zeros is the device's way of waiving the response.
  if (std::all_of(random.begin(), random.end(), [](uint8_t byte) { return byte == 0; })) {
    Log("AUTH: random all-zero, still valid, skip algorithm");
    return true;
  }
  const std::vector<uint8_t> response =
      algorithm_ == nullptr ? std::vector<uint8_t>() : algorithm_->Compute(random);
  if (response.empty()) {
    Log("AUTH: algorithm compute failed");
    return false;
  }
  if (!Exchange(config_.response_cmd, response, shown, &reply)) {
    Log("AUTH: response rejected");
    return false;
  }
  return true;
}

bool AuthorizedCmxClient::Exchange(uint32_t cmd, const std::vector<uint8_t>& payload, Shown shown,
                                   std::vector<uint8_t>* reply) {
  reply->clear();  // the client leaves it as it was when the reply has no payload
  const auto code = static_cast<uint8_t>(cmd);
  if (shown == Shown::kNo) {
    return client_->QueryQuietly(payload, *reply, code, nullptr) == 0;
  }
  return client_->QueryCommand(payload, *reply, code, false, nullptr) == 0;
}

void AuthorizedCmxClient::Log(const std::string& line) {
  if (log_ != nullptr) {
    log_->WriteLine(line);
  }
}
