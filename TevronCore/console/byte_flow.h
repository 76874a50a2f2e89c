#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "CmxClient/byte_sink.h"
#include "auth/auth_config.h"
#include "session/user_report.h"
#include "variables/command_code.h"
#include "variables/config_parser.h"

/// Shows the raw bytes of exchanges in the log window while the user wants to see them. All members
/// may be called on any thread; `report` has to outlive it.
class ByteFlow {
 public:
  explicit ByteFlow(UserReport& report) : report_(report) {}

  /// Off until switched on.
  void SetOn(bool on) { on_ = on; }
  bool IsOn() const { return on_; }

  /// How many commands were shown since the start of the program.
  int CommandCount() const { return command_count_; }

  void ShowCommand(const std::string& line);
  void ShowAnswer(const std::string& line);

 private:
  UserReport& report_;
  std::atomic<bool> on_{false};
  std::atomic<int> command_count_{0};
};

/// How the requests begin that carry a secret there or back: those that read or write "Shared
/// Secret Key", and the response of the handshake, which together with its challenge tells a mask
/// word to whoever reads both.
std::vector<WireCommand> SecretCommands(const ConfigParser& table, const AuthConfig& auth);

/// Brings the bytes of one connection to the byte flow. Of a secret command and its answer only the
/// lengths are shown; when that answer did not come in time, it may still do so instead of a later
/// one, so the next one is hidden too.
class ByteFlowSink : public kavel::lidar::ByteSink {
 public:
  ByteFlowSink(std::shared_ptr<ByteFlow> flow, std::vector<WireCommand> secrets);

  void Sent(const Request& request, const std::vector<uint8_t>& frame) override;
  void Received(const std::vector<uint8_t>& bytes) override;
  void Failed(int32_t error) override;

 private:
  bool IsSecret(const Request& request) const;

  const std::shared_ptr<ByteFlow> flow_;
  const std::vector<WireCommand> secrets_;
  std::atomic<bool> secret_owed_{false};
};
