#include "pages/page_reader.h"

#include <QDebug>
#include <algorithm>
#include <exception>

#include "CmxClient/cmx_client.h"
#include "CmxClient/cmx_parser.h"
#include "Log/logger.h"
#include "variables/command_code.h"
#include "variables/value_text.h"

namespace {

using kavel::lidar::kError;

constexpr char kGroupRead[] = "TevronManager::GetInfoFromLidarWithSameCmd";
constexpr int kMaxUnansweredInARow = 2;
constexpr char kSilence[] = "";  // no read command has this key

/// The names of a group, as many as fit a line.
std::string NamesOf(const ReadGroup& group) {
  constexpr size_t kShown = 8;
  std::string names;
  for (size_t i = 0; i < std::min(group.size(), kShown); ++i) {
    names += (i == 0 ? "" : ", ") + group[i]->var_name;
  }
  return group.size() > kShown ? names + " and " + std::to_string(group.size() - kShown) + " more"
                               : names;
}

/// How many bytes of the reply the group takes.
int64_t LengthOf(const ReadGroup& group) {
  int64_t length = 0;
  for (const VarInfo* var : group) {
    length = std::max(length, int64_t{var->get_start_pos} + var->offset);
  }
  return length;
}

}  // namespace

std::map<std::string, ReadGroup> GroupByReadCommand(const std::vector<const VarInfo*>& vars) {
  std::map<std::string, ReadGroup> groups;
  for (const VarInfo* var : vars) {
    if (var->get_cmd.empty()) {
      continue;
    }
    ReadGroup& group = groups[var->read->name];
    if (std::find(group.begin(), group.end(), var) == group.end()) {
      group.push_back(var);
    }
  }
  return groups;
}

Unread PageReader::Read(const std::vector<const VarInfo*>& vars, const char* caller,
                        std::chrono::milliseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  const std::map<std::string, ReadGroup> groups = GroupByReadCommand(vars);
  Unread unread;
  int unanswered = 0;
  for (const auto& [key, group] : groups) {
    if (unanswered == kMaxUnansweredInARow) {
      NoteFailure(group, "the lidar is silent", &unread);
    } else if (std::chrono::steady_clock::now() >= end) {
      unread.left.insert(unread.left.end(), group.begin(), group.end());
    } else {
      const ReadOutcome outcome = ReadGroupNow(key, group, caller, &unread);
      unread.answered = outcome == ReadOutcome::kRead || outcome == ReadOutcome::kRefused;
      unanswered = outcome == ReadOutcome::kNoAnswer ? unanswered + 1 : 0;
      if (outcome == ReadOutcome::kRead) {
        failures_.WasRead(kSilence);
      }
    }
  }
  if (unanswered == kMaxUnansweredInARow && failures_.IsNews(kSilence)) {
    report_.LogLine(
        "The lidar did not answer two read commands in a row. The rest of the page was not read.",
        LogType::kWarning);
  }
  return unread;
}

ReadOutcome PageReader::ReadGroupNow(const std::string& key, const ReadGroup& group,
                                     const char* caller, Unread* unread) {
  ReadOutcome outcome = ReadOutcome::kRefused;
  std::string reason;
  try {
    outcome = GetInfoFromLidarWithSameCmd(group, &reason);
  } catch (const std::exception& e) {
    qDebug().noquote().nospace() << caller << "(): ERROR " << e.what()
                                 << ". get_cmd and payload = " << QString::fromStdString(key);
    reason = e.what();
  }
  if (outcome == ReadOutcome::kRead) {
    failures_.WasRead(key);
    return outcome;
  }
  NoteFailure(group, reason, unread);
  // Not being allowed to ask is no failure: whoever forbade it says so.
  if (outcome != ReadOutcome::kNotSent && failures_.IsNews(key)) {
    report_.LogLine(group.front()->function_module.str() + ": " + NamesOf(group) +
                        " could not be read: " + reason + ".",
                    LogType::kWarning);
  }
  return outcome;
}

void PageReader::NoteFailure(const ReadGroup& group, const std::string& reason, Unread* unread) {
  for (const VarInfo* var : group) {
    unread->failed[var] = reason;
  }
  table_.NoteReadFailure(group, reason);
}

ReadOutcome PageReader::GetInfoFromLidarWithSameCmd(const ReadGroup& group, std::string* reason) {
  if (!sender_.IsOpen() || !state_.MayRead()) {
    *reason = "the lidar may not be asked now";
    return ReadOutcome::kNotSent;
  }
  if (group.empty()) {
    qDebug().noquote() << kGroupRead << "(): ERROR with the input v_p_vars -- size == 0";
    return ReadOutcome::kNotSent;
  }
  const VarInfo& first = *group.front();
  if (std::any_of(group.begin(), group.end(),
                  [&first](const VarInfo* var) { return var->read != first.read; })) {
    qDebug().noquote() << kGroupRead
                       << "(): ERROR with the input v_p_vars -- They must use the same get cmd.";
    return ReadOutcome::kNotSent;
  }

  const WireCommand read = WireCommandOf(first.get_cmd, first.read->fixed_payload);
  const QString command = QString::fromStdString(first.get_cmd);
  std::vector<uint8_t> reply;
  int32_t error = 0;
  const int32_t result = sender_.QueryCommand(read.payload, reply, read.code, false, &error);
  if (result != 0) {
    qDebug().noquote() << kGroupRead << "FAILED, cmd sent =" << command
                       << "-- QueryCommand()'s ret =" << result;
    *reason = kavel::lidar::CmxClient::ErrorText(error);
    return IsSilence(error) ? ReadOutcome::kNoAnswer : ReadOutcome::kRefused;
  }
  if (reply.empty()) {
    qDebug().noquote().nospace() << kGroupRead << "(): try get "
                                 << QString::fromStdString(first.var_name)
                                 << ", but get no return msg from lidar. cmd sent = " << command;
    *reason = "the answer is empty";
    return ReadOutcome::kRefused;
  }
  const int64_t needed = LengthOf(group);
  if (static_cast<int64_t>(reply.size()) < needed) {
    KAVEL_LOG(kError, "get var pos offset failed!");
    *reason = "the answer is too short, " + std::to_string(reply.size()) + " of " +
              std::to_string(needed) + " bytes";
    return ReadOutcome::kRefused;
  }
  std::vector<uint8_t> slice;
  bool any_taken = false;
  for (const VarInfo* var : group) {
    any_taken = UpdateSingleVarFromOutput(*var, read.code, reply, slice) || any_taken;
  }
  *reason = "the answer does not fit the type";
  return any_taken ? ReadOutcome::kRead : ReadOutcome::kRefused;
}

bool PageReader::GetInfoFromLidar(const VarInfo& var) {
  return !var.get_cmd.empty() && Read({&var}, "TevronManager::GetInfoFromLidar").failed.empty();
}

bool PageReader::UpdateSingleVarFromOutput(const VarInfo& var, uint8_t cmd,
                                           const std::vector<uint8_t>& output,
                                           std::vector<uint8_t>& slice) {
  if (output.empty()) {
    KAVEL_LOG(kError, "TevronManager::updateSingleVarFromOutput(): Error with the input 'output'");
    return false;
  }
  if (table_.Find(var.var_id) == nullptr) {
    KAVEL_LOG(kError, "TevronManager::updateSingleVarFromOutput(): Error with the input var_info");
    return false;
  }
  const auto position = table_.PositionOf(var.get_cmd, var, var.offset);
  if (!position) {
    KAVEL_LOG(kError, "get <start_pos, offset> failed!");
    return false;
  }
  kavel::lidar::Cmx_1_0_parser codec;
  if (!codec.CmxStreamDecode(cmd, 0, output, position->start, position->length, slice)) {
    KAVEL_LOG(kError, "get var pos offset failed!");
    return false;
  }
  if (var.var_name == kSharedSecretKey) {
    table_.StoreBytes(var, slice);
    return true;
  }
  std::string text;
  std::string fault;
  if (DecodeValue(var, slice, &text, &fault)) {
    table_.StoreReading(var, std::move(text), slice);
    return true;
  }
  KAVEL_LOG(kError, "%s", fault.c_str());
  const ValueKind kind = var.value_type->kind;
  if (kind != ValueKind::kRaw && kind != ValueKind::kUnknown) {
    return false;
  }
  // What cannot be shown is still carried unchanged in the payload of its set command.
  table_.StoreBytes(var, slice);
  return true;
}

std::string ReadTextOf(const char* name, kavel::lidar::CommandSender& sender, ConfigParser& table,
                       UserReport& report) {
  const VarInfo* const var = table.FindByName(name);
  if (var == nullptr) {
    return "";
  }
  LinkState state;
  state.connected = true;
  ReadFailures failures;
  PageReader reader(sender, table, state, failures, report);
  return reader.GetInfoFromLidar(*var) ? table.ValueOf(*var).text : "";
}
