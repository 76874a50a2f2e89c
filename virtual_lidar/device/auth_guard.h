#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "auth/auth_config.h"
#include "auth/auth_keys.h"
#include "faults/fault_modes.h"
#include "wire/message.h"

/// How far one client has come with its handshake.
struct AuthSession {
  std::vector<uint8_t> challenge;  ///< handed out and not yet answered; empty when none
  bool authorised = false;         ///< the next protected command may pass, that one alone
};

/// The device's side of the authentication: probe, challenge, response, and the gate in front of
/// the protected commands. Lies in any step when a fault says so.
class AuthGuard {
 public:
  /// `required` what the probe answers; when false every command passes.
  AuthGuard(AuthConfig config, AuthKeys keys, bool required);

  /// Answers a probe, a challenge or a response request; nothing when the request is none of them
  /// or the model does not authenticate. On a serial line the answers to probe and challenge begin
  /// with a 4-byte counter.
  std::optional<DeviceReply> Answer(const DeviceRequest& request, AuthSession* session,
                                    FaultBox* faults);

  /// Whether a command may be carried out now. A protected one uses its authorisation up.
  bool Admit(uint8_t command, AuthSession* session) const;

 private:
  std::vector<uint8_t> StartReply(const DeviceRequest& request);
  std::vector<uint8_t> AnswerProbe(const DeviceRequest& request, FaultBox* faults);
  std::vector<uint8_t> AnswerChallenge(const DeviceRequest& request, AuthSession* session,
                                       FaultBox* faults);
  uint8_t CheckResponse(const DeviceRequest& request, AuthSession* session, FaultBox* faults);

  AuthConfig config_;
  AuthKeys keys_;
  bool required_;
  uint32_t reply_count_ = 0;
};
