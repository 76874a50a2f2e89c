#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "CmxClient/command_sender.h"
#include "CmxClient/log_sink.h"
#include "CmxClient/ticket_mutex.h"
#include "auth/auth_algorithm.h"
#include "auth/auth_config.h"

/// A command sender that runs the challenge-response handshake before every protected command.
///
/// Handshake and command form one exchange under one mutex, so that no other thread's command can
/// come between; threads are let in in the order in which they come. All members may be called from
/// any thread. Long commands travel under command byte 0xFF, and that byte is what the protected
/// set is compared with. Lines for the user go to the log sink and begin with "AUTH: "; neither
/// keys nor responses are among them.
class AuthorizedCmxClient : public kavel::lidar::CommandSender {
 public:
  /// `client` carries the exchanges and must not be null; `log` may be. `reply_prefix`: the device
  /// puts a 4-byte counter before the payload of its probe and challenge replies (serial devices
  /// do). `algorithm` is the one that `config` names; null means that it is unavailable.
  AuthorizedCmxClient(std::shared_ptr<kavel::lidar::CommandSender> client, AuthConfig config,
                      bool reply_prefix, std::shared_ptr<kavel::lidar::LogSink> log,
                      std::unique_ptr<IAuthAlgorithm> algorithm);

  /// Asks the device whether it requires authentication. To be called once after connecting; until
  /// then nothing counts as required. A failed probe counts as required, a reply too short to hold
  /// the value as not required.
  void Probe();
  /// 0 when command `cmd` may be sent now, running the handshake where it is needed; -1 to refuse
  /// it.
  int Gate(uint8_t cmd);
  /// Challenge, response, verdict: true when the device accepts the next protected command.
  bool Handshake();

  bool IsOpen() override;
  using CommandSender::QueryCommand;
  /// As the wrapped client's, after the gate: a command that the gate refuses is not sent and fails
  /// with -1 and kAuthRefused.
  int32_t QueryCommand(const std::vector<uint8_t>& payload, std::vector<uint8_t>& result,
                       uint8_t cmd, bool with_header, int32_t* error) override;
  int32_t QueryQuietly(const std::vector<uint8_t>& payload, std::vector<uint8_t>& result,
                       uint8_t cmd, int32_t* error) override;
  int32_t QueryWithin(uint32_t timeout_ms, const std::vector<uint8_t>& payload,
                      std::vector<uint8_t>& result, uint8_t cmd, int32_t* error) override;
  int32_t QueryLong(const std::vector<uint8_t>& payload, std::vector<uint8_t>& result, uint8_t cmd,
                    kavel::lidar::ReplyProgress& progress, int32_t* error) override;

 private:
  /// Whether the byte flow has the handshake: that of a command which is kept out of it is, too.
  enum class Shown { kYes, kNo };
  bool MayPass(uint8_t cmd, Shown shown, int32_t* error);
  int GateLocked(uint8_t cmd, Shown shown);
  bool HandshakeLocked(Shown shown);
  bool Exchange(uint32_t cmd, const std::vector<uint8_t>& payload, Shown shown,
                std::vector<uint8_t>* reply);
  size_t PrefixSize() const { return reply_prefix_ ? 4 : 0; }
  void Log(const std::string& line);

  const std::shared_ptr<kavel::lidar::CommandSender> client_;
  const AuthConfig config_;
  const bool reply_prefix_;
  const std::shared_ptr<kavel::lidar::LogSink> log_;

  /// Held over gate, handshake and command.
  kavel::lidar::TicketMutex mutex_{kavel::lidar::Turn::kSequence};
  const std::unique_ptr<IAuthAlgorithm> algorithm_;
  bool auth_required_ = false;
};
