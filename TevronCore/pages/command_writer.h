#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "CmxClient/command_sender.h"
#include "pages/payload_builder.h"
#include "session/user_report.h"
#include "variables/config_parser.h"

/// The network settings: may cut the connection, so they go last and need no answer.
inline constexpr uint8_t kNetworkCommand = 0x21;

/// Puts the network settings behind the other commands, whose order stays.
void PutNetworkLast(std::vector<std::string>* set_cmds);

/// The fields of a command that can be read, which they have to be before it is sent.
std::vector<const VarInfo*> ReadableFields(const ConfigParser& table, const std::string& set_cmd);

/// Sends set commands that were built, one after the other, and remembers in the table what the
/// lidar took. On the thread that calls it. All arguments have to outlive the writer.
class CommandWriter {
 public:
  CommandWriter(kavel::lidar::CommandSender& sender, ConfigParser& table, UserReport& report)
      : sender_(sender), table_(table), report_(report) {}

  struct Outcome {
    bool taken = false;    ///< accepted, or network settings for which the link was dropped
    bool dropped = false;  ///< the latter
    int32_t error = 0;     ///< as CommandSender::QueryCommand
  };

  /// Sends the command. What was taken is the reading of its changed variables from then on.
  Outcome Send(const std::string& set_cmd, const SetCommand& command);

  /// An exchange beside those of Send ended so.
  void NoteAnswer(bool answered) { answered_ = answered; }
  /// The last exchange reached the lidar.
  bool answered() const { return answered_; }

  /// The network settings were taken: where the lidar is reached after its restart, which the log
  /// tells, too; else empty.
  const std::string& next_address() const { return next_address_; }

 private:
  void NameNextAddress(const std::string& set_cmd);
  std::string HeldText(const VarInfo& var) const;

  kavel::lidar::CommandSender& sender_;
  ConfigParser& table_;
  UserReport& report_;
  std::string next_address_;
  bool answered_ = false;
};
