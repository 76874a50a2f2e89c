#include "pages/page_writer.h"

#include <QByteArray>
#include <QDebug>
#include <algorithm>
#include <exception>
#include <stdexcept>

#include "CmxClient/cmx_client.h"
#include "CmxClient/fov_command.h"
#include "CmxClient/hex_text.h"
#include "variables/command_code.h"

namespace {

/// The network settings: may cut the connection, so it goes last and needs no answer.
constexpr uint8_t kNetworkCommand = 0x21;

/// Reading before a write begins no further command after this: the window waits.
constexpr std::chrono::seconds kReadingTime{1};

/// The variable with the port on which the lidar takes commands, where its table has one.
constexpr char kCommandPort[] = "Command Port";

constexpr char kAllSet[] =
    "Set Lidar Successfully\nNote that if you have changed the TCP-related settings, you will need "
    "to restart the lidar for it to work.";

bool CarriesSecret(const std::vector<const VarInfo*>& vars) {
  return std::any_of(vars.begin(), vars.end(),
                     [](const VarInfo* var) { return var->var_name == kSharedSecretKey; });
}

QDebug Debug() { return qDebug().noquote() << "TevronManager::Run"; }

}  // namespace

PageWriter::Outcome PageWriter::Run(int module) {
  const int page_count = parts_.pages.page_count();
  if (page_count == 0 || !MayWrite() || module < 0 || module >= page_count) {
    return Outcome::kNothing;
  }
  try {
    Gather(module);
    ReadPresentValues();
    SendAll();
  } catch (const std::exception& e) {
    ReportFailure(e.what());
    return command_was_sent_ && !lidar_answered_ ? Outcome::kNoAnswer : Outcome::kFailed;
  }
  parts_.report.Success(kAllSet);
  return Outcome::kWritten;
}

bool PageWriter::MayWrite() {
  const char* const obstacle = parts_.state.Obstacle(parts_.sender);
  if (obstacle != nullptr) {
    parts_.report.Error(obstacle);
  }
  return obstacle == nullptr;
}

void PageWriter::Gather(int module) {
  std::vector<std::string> network_settings;
  for (const VarInfo* row : parts_.pages.VariablesOf(module)) {
    if (row->set_cmd.empty() || parts_.pending.erase(CommandOf(*row)) == 0) {
      continue;
    }
    command_ = CommandOf(*row);
    names_ = builder_.ChangedNames(command_);
    builder_.Gather(command_);
    for (const VarInfo* var : parts_.table.WrittenBy(command_)) {
      if (!var->get_cmd.empty()) {
        to_read_.push_back(var);
      }
    }
    (IsCommand(command_, kNetworkCommand) ? network_settings : send_list_).push_back(command_);
  }
  send_list_.insert(send_list_.end(), network_settings.begin(), network_settings.end());
  parts_.pending.clear();
}

void PageWriter::ReadPresentValues() {
  PageReader reader(*parts_.sender, parts_.table, parts_.state, parts_.failures, parts_.report);
  unread_ = reader.Read(to_read_, "TevronManager::Run", kReadingTime);
  for (const VarInfo* var : unread_.left) {
    unread_.failed[var] = "the lidar is slow";
  }
  lidar_answered_ = unread_.answered;
}

/// The fields that the user left alone go out as this lidar last reported them; it may hold others
/// by now.
void PageWriter::WarnOfOldValues(const std::string& set_cmd) {
  for (const VarInfo* var : parts_.table.WrittenBy(set_cmd)) {
    const auto failure = unread_.failed.find(var);
    if (failure != unread_.failed.end() && !parts_.table.ValueOf(*var).edited) {
      parts_.report.LogLine("The present values of [" + set_cmd + "] could not be read (" +
                                failure->second + "): the last ones that were read go with it.",
                            LogType::kWarning);
      return;
    }
  }
}

void PageWriter::SendAll() {
  for (const std::string& set_cmd : send_list_) {
    command_ = set_cmd;
    names_ = builder_.ChangedNames(set_cmd);
    if (IsCommand(set_cmd, kavel::lidar::kFovCommand)) {
      SendFov(set_cmd);
    } else {
      Send(set_cmd);
    }
    applied_.push_back(set_cmd);
  }
}

void PageWriter::SendFov(const std::string& set_cmd) {
  const std::optional<FovTable::Setting> setting = parts_.fov.ToSend();
  if (!setting) {
    throw std::runtime_error(
        "The lidar's field-of-view table was not read, so that the other angles are not known.");
  }
  WarnOfOldValues(set_cmd);
  int32_t error = 0;
  command_was_sent_ = true;
  const int32_t result = kavel::lidar::SendFovTable(*parts_.sender, setting->degrees,
                                                    kavel::lidar::kFovPairs, setting->mode, &error);
  TakeAnswer(error);
  if (result != 0) {
    Fail(set_cmd, "set channel fov failed");
  }
  const VarInfo& variable = *parts_.fov.variable();
  parts_.table.StoreWritten(
      variable, parts_.table.ValueOf(variable).text,
      kavel::lidar::BuildFovTable(setting->degrees, kavel::lidar::kFovPairs, setting->mode));
  parts_.fov.DropEdits();
}

void PageWriter::Send(const std::string& set_cmd) {
  const SetCommand command = builder_.Build(set_cmd);
  WarnOfOldValues(set_cmd);
  const QString cmd_text = QString::fromStdString(set_cmd);
  Debug() << "(): QueryCommand send cmd:    " << cmd_text;
  const std::string payload = CarriesSecret(parts_.table.WrittenBy(set_cmd))
                                  ? "(secret)"
                                  : kavel::lidar::HexText(command.payload);
  Debug() << "(): QueryCommand send payload:" << QString::fromStdString(payload)
          << ", length =" << command.payload.size();
  // Announced as a success before it is sent: the line tells the intention, the messages below tell
  // the outcome.
  parts_.report.LogLine("Send CMX command [" + set_cmd + "] to set " + command.names + " success.",
                        LogType::kInfo);
  const bool was_reached = lidar_answered_;
  std::vector<uint8_t> reply;
  int32_t error = 0;
  command_was_sent_ = true;
  const int32_t result =
      parts_.sender->QueryCommand(command.payload, reply, command.code, false, &error);
  TakeAnswer(error);
  const bool is_network = command.code == kNetworkCommand;
  // A lidar that has just taken new network settings drops the link before it answers.
  if (result == 0 || (is_network && error == kavel::lidar::kNoReply)) {
    Debug() << "(): QueryCommand SUCCESS, get result =" << result;
    // The reading from now on, whether or not it can be read back.
    for (const SetCommand::Change& change : command.changes) {
      parts_.table.StoreWritten(*change.var, change.text, change.bytes);
    }
    if (!is_network) {
      parts_.report.Success("CMX command [" + set_cmd + "] to set " + command.names + " success.");
    } else if (result == 0 || was_reached) {
      NameNextAddress(set_cmd);
    }
    return;
  }
  Debug() << "(): QueryCommand FAILED, get result =" << result;
  Fail(set_cmd, set_cmd + " SET " + command.names +
                    " ret_code: " + kavel::lidar::CmxClient::ErrorText(error));
}

void PageWriter::TakeAnswer(int32_t error) { lidar_answered_ = error >= 0; }

void PageWriter::Fail(const std::string& set_cmd, const std::string& reason) {
  parts_.report.LogLine("SET [" + set_cmd + "] FAILED", LogType::kWarning);
  throw std::runtime_error(reason);
}

void PageWriter::ReportFailure(const std::string& reason) {
  Debug() << "(): Caught Exception: " << QString::fromStdString(reason);
  parts_.pending.clear();
  parts_.report.Error("Set Failed: " + reason);
  parts_.report.LogLine("Set " + command_ + " Failed. " + names_ + " Detail: " +
                            (command_was_sent_ ? "Command was sent." : "No command was sent."),
                        LogType::kWarning);
  if (applied_.empty()) {
    return;
  }
  std::string list;
  for (const std::string& set_cmd : applied_) {
    list += (list.empty() ? "[" : ", [") + set_cmd + "]";
  }
  parts_.report.LogLine("Already applied before the failure and still in force: " + list,
                        LogType::kWarning);
}

void PageWriter::NameNextAddress(const std::string& set_cmd) {
  const std::vector<const VarInfo*> vars = parts_.table.WrittenBy(set_cmd);
  const auto address = std::find_if(vars.begin(), vars.end(), [](const VarInfo* var) {
    return var->value_type->kind == ValueKind::kAddress;
  });
  if (address == vars.end()) {
    return;
  }
  next_place_ = {parts_.table.ValueOf(**address).text, ""};
  const auto port = std::find_if(vars.begin(), vars.end(),
                                 [](const VarInfo* var) { return var->var_name == kCommandPort; });
  if (port != vars.end()) {
    next_place_->port = parts_.table.ValueOf(**port).text;
  }
  parts_.report.LogLine("After its restart the lidar is reached at " + next_place_->address +
                            ": use this address for the next connection.",
                        LogType::kInfo);
}
