#include "pages/page_writer.h"

#include <QByteArray>
#include <QDebug>
#include <algorithm>
#include <exception>
#include <stdexcept>

#include "CmxClient/cmx_client.h"
#include "CmxClient/fov_command.h"
#include "CmxClient/hex_text.h"
#include "pages/page_reader.h"

namespace {

/// The network settings: may cut the connection, so it goes last and needs no answer.
constexpr char kNetworkCommand[] = "0x21";

constexpr char kAllSet[] =
    "Set Lidar Successfully\nNote that if you have changed the TCP-related settings, you will need "
    "to restart the lidar for it to work.";

bool CarriesSecret(const std::vector<const VarInfo*>& vars) {
  return std::any_of(vars.begin(), vars.end(),
                     [](const VarInfo* var) { return var->var_name == kSharedSecretKey; });
}

QDebug Debug() { return qDebug().noquote() << "TevronManager::Run"; }

}  // namespace

bool PageWriter::Run(int module) {
  const int page_count = parts_.pages.page_count();
  if (page_count == 0 || !MayWrite() || module < 0 || module >= page_count) {
    return false;
  }
  try {
    Gather(module);
    ReadPresentValues();
    SendAll();
  } catch (const std::exception& e) {
    ReportFailure(e.what());
    return false;
  }
  parts_.report.Success(kAllSet);
  return true;
}

bool PageWriter::MayWrite() {
  const char* const obstacle = parts_.state.Obstacle(parts_.sender);
  if (obstacle != nullptr) {
    parts_.report.Error(obstacle);
  }
  return obstacle == nullptr;
}

void PageWriter::Gather(int module) {
  bool network_settings_pending = false;
  for (const VarInfo* row : parts_.pages.VariablesOf(module)) {
    if (row->set_cmd.empty() || parts_.pending.erase(row->set_cmd) == 0) {
      continue;
    }
    command_ = row->set_cmd;
    names_ = builder_.ChangedNames(command_);
    builder_.Gather(command_);
    for (const VarInfo* var : parts_.table.WrittenBy(command_)) {
      if (!var->get_cmd.empty()) {
        to_read_.push_back(var);
      }
    }
    if (command_ == kNetworkCommand) {
      network_settings_pending = true;
    } else {
      send_list_.push_back(command_);
    }
  }
  if (network_settings_pending) {
    send_list_.emplace_back(kNetworkCommand);
  }
  parts_.pending.clear();
}

void PageWriter::ReadPresentValues() {
  PageReader reader(*parts_.sender, parts_.table, parts_.state, parts_.report);
  reader.Read(to_read_, "TevronManager::Run");
  parts_.fov.StoreReadingOf(parts_.table);
}

void PageWriter::SendAll() {
  for (const std::string& set_cmd : send_list_) {
    command_ = set_cmd;
    names_ = builder_.ChangedNames(set_cmd);
    if (set_cmd == kFovSetCommand) {
      SendFov();
    } else {
      Send(set_cmd);
    }
    applied_.push_back(set_cmd);
  }
}

void PageWriter::SendFov() {
  const VarInfo& variable = *parts_.table.WrittenBy(kFovSetCommand).front();
  const std::vector<uint8_t> present = parts_.table.ValueOf(variable).bytes;
  // Without the lidar's own table the angles that the user left alone would be sent as 0.
  if (present.empty() && !variable.get_cmd.empty()) {
    throw std::runtime_error("Unknown error with this var: It has no current_val. var_name = " +
                             variable.var_name);
  }
  const uint8_t mode = present.empty() ? uint8_t{0} : present.front();
  int32_t error = 0;
  command_was_sent_ = true;
  if (kavel::lidar::SendFovTable(*parts_.sender, parts_.fov.Shown(), kavel::lidar::kFovPairs, mode,
                                 &error) != 0) {
    Fail(kFovSetCommand, "set channel fov failed");
  }
}

void PageWriter::Send(const std::string& set_cmd) {
  const SetCommand command = builder_.Build(set_cmd);
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
  std::vector<uint8_t> reply;
  int32_t error = 0;
  command_was_sent_ = true;
  const int32_t result =
      parts_.sender->QueryCommand(command.payload, reply, command.code, false, &error);
  const bool is_network = set_cmd == kNetworkCommand;
  // A lidar that has just taken new network settings drops the link before it answers.
  if (result == 0 || (is_network && error == kavel::lidar::kNoReply)) {
    Debug() << "(): QueryCommand SUCCESS, get result =" << result;
    if (is_network) {
      NameNextAddress();
    } else {
      parts_.report.Success("CMX command [" + set_cmd + "] to set " + command.names + " success.");
    }
    return;
  }
  Debug() << "(): QueryCommand FAILED, get result =" << result;
  Fail(set_cmd, set_cmd + " SET " + command.names +
                    " ret_code: " + kavel::lidar::CmxClient::ErrorText(error));
}

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

void PageWriter::NameNextAddress() {
  const std::vector<const VarInfo*> vars = parts_.table.WrittenBy(kNetworkCommand);
  const auto address = std::find_if(vars.begin(), vars.end(), [](const VarInfo* var) {
    return var->value_type->kind == ValueKind::kAddress;
  });
  if (address == vars.end()) {
    return;
  }
  parts_.report.LogLine("After its restart the lidar is reached at " +
                            parts_.table.ValueOf(**address).text +
                            ": use this address for the next connection.",
                        LogType::kInfo);
}
