#include "pages/page_writer.h"

#include <QDebug>
#include <exception>
#include <stdexcept>

#include "CmxClient/cmx_client.h"
#include "CmxClient/fov_command.h"
#include "session/lost_answer.h"
#include "variables/command_code.h"

namespace {

/// Reading before a write begins no further command after this: the window waits.
constexpr std::chrono::seconds kReadingTime{1};

constexpr char kAllSet[] =
    "Set Lidar Successfully\nNote that if you have changed the TCP-related settings, you will need "
    "to restart the lidar for it to work.";

}  // namespace

PageWriter::Outcome PageWriter::Run(int module) {
  const int page_count = parts_.pages.page_count();
  if (page_count == 0 || !MayWrite() || module < 0 || module >= page_count) {
    return Outcome::kNothing;
  }
  writer_.emplace(*parts_.sender, parts_.table, parts_.report);
  try {
    Gather(module);
    ReadPresentValues();
    SendAll();
  } catch (const std::exception& e) {
    ReportFailure(e.what());
    return command_was_sent_ && !writer_->answered() ? Outcome::kNoAnswer : Outcome::kFailed;
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
  for (const VarInfo* row : parts_.pages.VariablesOf(module)) {
    if (row->set_cmd.empty() || parts_.pending.erase(CommandOf(*row)) == 0) {
      continue;
    }
    command_ = CommandOf(*row);
    names_ = ChangedNames(command_);
    builder_.Gather(command_);
    const std::vector<const VarInfo*> fields = ReadableFields(parts_.table, command_);
    to_read_.insert(to_read_.end(), fields.begin(), fields.end());
    send_list_.push_back(command_);
  }
  PutNetworkLast(&send_list_);
  parts_.pending.clear();
}

void PageWriter::ReadPresentValues() {
  PageReader reader(*parts_.sender, parts_.table, parts_.state, parts_.failures, parts_.report);
  unread_ = reader.Read(to_read_, "TevronManager::Run", kReadingTime);
  for (const VarInfo* var : unread_.left) {
    unread_.failed[var] = "the lidar is slow";
  }
  writer_->NoteAnswer(unread_.answered);
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
    names_ = ChangedNames(set_cmd);
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
  writer_->NoteAnswer(error >= 0);
  if (result != 0) {
    Fail(set_cmd, "set channel fov failed", error);
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
  // Announced as a success before it is sent: the line tells the intention, the messages below tell
  // the outcome.
  parts_.report.LogLine("Send CMX command [" + set_cmd + "] to set " + command.names + " success.",
                        LogType::kInfo);
  command_was_sent_ = true;
  const CommandWriter::Outcome outcome = writer_->Send(set_cmd, command);
  if (!outcome.taken) {
    Fail(set_cmd,
         set_cmd + " SET " + command.names +
             " ret_code: " + kavel::lidar::CmxClient::ErrorText(outcome.error),
         outcome.error);
  }
  if (command.code != kNetworkCommand) {
    parts_.report.Success("CMX command [" + set_cmd + "] to set " + command.names + " success.");
  }
}

void PageWriter::Fail(const std::string& set_cmd, const std::string& reason, int32_t error) {
  remedy_ = LostAnswerRemedy(error);
  parts_.report.LogLine("SET [" + set_cmd + "] FAILED", LogType::kWarning);
  throw std::runtime_error(reason);
}

void PageWriter::ReportFailure(const std::string& reason) {
  qDebug().noquote() << "TevronManager::Run(): Caught Exception: "
                     << QString::fromStdString(reason);
  parts_.pending.clear();
  parts_.report.ErrorWithRemedy("Set Failed: " + reason, remedy_);
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

std::string PageWriter::ChangedNames(const std::string& set_cmd) const {
  std::string names;
  for (const VarInfo* var : parts_.table.WrittenBy(set_cmd)) {
    if (parts_.table.ValueOf(*var).edited) {
      names += var->var_name + ", ";
    }
  }
  return names;
}
