#include "device/auth_guard.h"

#include <openssl/rand.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "Wire/big_endian.h"
#include "auth/auth_algorithm.h"

namespace {

constexpr size_t kChallengeSize = 16;
// A table that asks for a probe value further out than this is refused, not obeyed.
constexpr int32_t kMaxProbeReply = 1024;

}  // namespace

AuthGuard::AuthGuard(AuthConfig config, AuthKeys keys, bool required)
    : config_(std::move(config)), keys_(std::move(keys)), required_(required) {
  if (config_.enabled && (config_.probe_offset < 0 || config_.probe_offset > kMaxProbeReply ||
                          config_.probe_len < 1 || config_.probe_len > kMaxProbeReply)) {
    throw std::invalid_argument("the probe value of the authentication table lies outside 0 to " +
                                std::to_string(kMaxProbeReply));
  }
}

std::optional<DeviceReply> AuthGuard::Answer(const DeviceRequest& request, AuthSession* session,
                                             FaultBox* faults) {
  if (!config_.enabled) {
    return std::nullopt;
  }
  DeviceReply reply;
  reply.code = request.code;
  // The tables write these codes wide; on the wire they are one byte.
  if (request.code == static_cast<uint8_t>(config_.probe_cmd)) {
    reply.payload = AnswerProbe(request, faults);
  } else if (request.code == static_cast<uint8_t>(config_.challenge_cmd)) {
    reply.payload = AnswerChallenge(request, session, faults);
  } else if (request.code == static_cast<uint8_t>(config_.response_cmd)) {
    reply.return_code = CheckResponse(request, session, faults);
  } else {
    return std::nullopt;
  }
  return reply;
}

bool AuthGuard::Admit(uint8_t command, AuthSession* session) const {
  if (!config_.enabled || !required_ || config_.protected_cmds.count(command) == 0) {
    return true;
  }
  return std::exchange(session->authorised, false);
}

std::vector<uint8_t> AuthGuard::StartReply(const DeviceRequest& request) {
  std::vector<uint8_t> payload;
  if (request.serial_line) {
    kavel::lidar::AppendBigEndian32(payload, ++reply_count_);
  }
  return payload;
}

std::vector<uint8_t> AuthGuard::AnswerProbe(const DeviceRequest& request, FaultBox* faults) {
  std::vector<uint8_t> payload = StartReply(request);
  const size_t value_at = payload.size() + static_cast<size_t>(config_.probe_offset);
  const size_t value_size = static_cast<size_t>(config_.probe_len);
  payload.resize(value_at + value_size);
  if (required_) {
    payload[config_.probe_little_endian ? value_at : value_at + value_size - 1] = 1;
  }
  if (faults->Strike(Fault::kAuthShortProbe, request.code)) {
    payload.pop_back();
  }
  return payload;
}

std::vector<uint8_t> AuthGuard::AnswerChallenge(const DeviceRequest& request, AuthSession* session,
                                                FaultBox* faults) {
  session->authorised = false;
  session->challenge.assign(kChallengeSize, 0);
  if (faults->Strike(Fault::kAuthZeroChallenge, request.code)) {
    // Zero means that no response is awaited.
    session->authorised = true;
  } else if (RAND_bytes(session->challenge.data(), kChallengeSize) != 1) {
    throw std::runtime_error("no random bytes for a challenge");
  }
  std::vector<uint8_t> payload = StartReply(request);
  payload.insert(payload.end(), session->challenge.begin(), session->challenge.end());
  if (faults->Strike(Fault::kAuthShortChallenge, request.code)) {
    payload.resize(payload.size() - kChallengeSize / 2);
  }
  return payload;
}

uint8_t AuthGuard::CheckResponse(const DeviceRequest& request, AuthSession* session,
                                 FaultBox* faults) {
  // One try for each challenge.
  const std::vector<uint8_t> challenge = std::exchange(session->challenge, {});
  const bool right = !challenge.empty() &&
                     VerifyAuthResponse(config_.algorithm_id, keys_, challenge, request.payload);
  session->authorised = right && !faults->Strike(Fault::kAuthRefuseResponse, request.code);
  return session->authorised ? kAccepted : kAuthenticationRequired;
}
