#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "CmxClient/command_sender.h"
#include "pages/read_failures.h"
#include "session/link_state.h"
#include "session/user_report.h"
#include "variables/config_parser.h"

/// Variables that one read command answers, all in one reply.
using ReadGroup = std::vector<const VarInfo*>;

/// Sorts variables into read groups by read command text followed by read payload text. Variables
/// that cannot be read stand in no group, and none stands twice in one.
std::map<std::string, ReadGroup> GroupByReadCommand(const std::vector<const VarInfo*>& vars);

/// Whether an exchange that failed so found no usable answer. A refusal by the authentication gate
/// is not that: it says nothing about the next, perhaps unprotected, command.
inline bool IsSilence(int32_t error) { return error < 0 && error != kavel::lidar::kAuthRefused; }

/// What became of one read command.
enum class ReadOutcome {
  kRead,      ///< answered; the values were taken as far as the reply held them
  kNotSent,   ///< not allowed now, or the group cannot be asked for
  kRefused,   ///< answered, but not with a value of any variable
  kNoAnswer,  ///< no usable reply arrived
};

/// What a reading did not bring.
struct Unread {
  /// Why each variable that was asked for, or left out after silence, has no new value.
  std::map<const VarInfo*, std::string> failed;
  /// Those that there was no time for.
  std::vector<const VarInfo*> left;
  bool answered = false;  ///< the last command found an answer, if only a refusal
};

/// Asks the lidar for variables and stores what it answers in the table. Edited variables keep the
/// user's text. A failure leaves earlier values in place; the log window tells it once, as
/// ReadFailures has it.
///
/// Runs on the thread that calls it and holds no lock while it waits for the lidar. All arguments
/// have to outlive the reader.
class PageReader {
 public:
  static constexpr std::chrono::milliseconds kNoLimit = std::chrono::hours(24);

  PageReader(kavel::lidar::CommandSender& sender, ConfigParser& table, const LinkState& state,
             ReadFailures& failures, UserReport& report)
      : sender_(sender), table_(table), state_(state), failures_(failures), report_(report) {}

  /// Sends each distinct read command of `vars` once, in key order. Begins none once `time` is
  /// over, and leaves the rest out after two commands in a row without an answer, so that a silent
  /// lidar cannot hold up the window for the whole page. `caller` names the user of the reader in
  /// the log.
  Unread Read(const std::vector<const VarInfo*>& vars, const char* caller,
              std::chrono::milliseconds time = kNoLimit);

  /// Reads one group. Its variables have to share one read command and payload. *reason says why
  /// none of them was read.
  ReadOutcome GetInfoFromLidarWithSameCmd(const ReadGroup& group, std::string* reason);

  /// Reads one variable: true when its value came.
  bool GetInfoFromLidar(const VarInfo& var);

  /// Cuts the bytes of `var` out of `output`, the reply to its read command, and stores bytes and
  /// text; of a "raw" value or an unknown type, which have no text, the bytes only. `slice`
  /// receives the bytes. False, with the stored value unchanged, when the reply is too short or the
  /// bytes do not fit the type.
  bool UpdateSingleVarFromOutput(const VarInfo& var, uint8_t cmd,
                                 const std::vector<uint8_t>& output, std::vector<uint8_t>& slice);

 private:
  ReadOutcome ReadGroupNow(const std::string& key, const ReadGroup& group, const char* caller,
                           Unread* unread);
  void NoteFailure(const ReadGroup& group, const std::string& reason, Unread* unread);

  kavel::lidar::CommandSender& sender_;
  ConfigParser& table_;
  const LinkState& state_;
  ReadFailures& failures_;
  UserReport& report_;
};

/// Reads the variable called `name` by itself, whether pages may be read now or not. Returns its
/// text in the table, "" when there is no such variable or its value did not come.
std::string ReadTextOf(const char* name, kavel::lidar::CommandSender& sender, ConfigParser& table,
                       UserReport& report);
