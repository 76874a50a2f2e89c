#include "pages/command_writer.h"

#include <QDebug>
#include <algorithm>

#include "CmxClient/hex_text.h"
#include "variables/command_code.h"

namespace {

bool CarriesSecret(const std::vector<const VarInfo*>& vars) {
  return std::any_of(vars.begin(), vars.end(),
                     [](const VarInfo* var) { return var->var_name == kSharedSecretKey; });
}

QDebug Debug() { return qDebug().noquote() << "TevronManager::Run"; }

}  // namespace

void PutNetworkLast(std::vector<std::string>* set_cmds) {
  std::stable_partition(set_cmds->begin(), set_cmds->end(), [](const std::string& set_cmd) {
    return !IsCommand(set_cmd, kNetworkCommand);
  });
}

std::vector<const VarInfo*> ReadableFields(const ConfigParser& table, const std::string& set_cmd) {
  std::vector<const VarInfo*> fields = table.WrittenBy(set_cmd);
  fields.erase(std::remove_if(fields.begin(), fields.end(),
                              [](const VarInfo* var) { return var->get_cmd.empty(); }),
               fields.end());
  return fields;
}

CommandWriter::Outcome CommandWriter::Send(const std::string& set_cmd, const SetCommand& command) {
  Debug() << "(): QueryCommand send cmd:    " << QString::fromStdString(set_cmd);
  const std::string payload = CarriesSecret(table_.WrittenBy(set_cmd))
                                  ? "(secret)"
                                  : kavel::lidar::HexText(command.payload);
  Debug() << "(): QueryCommand send payload:" << QString::fromStdString(payload)
          << ", length =" << command.payload.size();
  const bool was_reached = answered_;
  std::vector<uint8_t> reply;
  Outcome outcome;
  const int32_t result =
      sender_.QueryCommand(command.payload, reply, command.code, false, &outcome.error);
  answered_ = outcome.error >= 0;
  const bool is_network = command.code == kNetworkCommand;
  // A lidar that has just taken new network settings drops the link before it answers.
  outcome.dropped = result != 0 && is_network && outcome.error == kavel::lidar::kNoReply;
  outcome.taken = result == 0 || outcome.dropped;
  Debug() << "(): QueryCommand" << (outcome.taken ? "SUCCESS" : "FAILED")
          << ", get result =" << result;
  if (!outcome.taken) {
    return outcome;
  }
  // The reading from now on, whether or not it can be read back.
  for (const SetCommand::Change& change : command.changes) {
    table_.StoreWritten(*change.var, change.text, change.bytes);
  }
  if (is_network && (result == 0 || was_reached)) {
    NameNextAddress(set_cmd);
  }
  return outcome;
}

void CommandWriter::NameNextAddress(const std::string& set_cmd) {
  const std::vector<const VarInfo*> vars = table_.WrittenBy(set_cmd);
  const auto address = std::find_if(vars.begin(), vars.end(), [](const VarInfo* var) {
    return var->value_type->kind == ValueKind::kAddress;
  });
  if (address == vars.end()) {
    return;
  }
  next_address_ = HeldText(**address);
  report_.LogLine("After its restart the lidar is reached at " + next_address_ +
                      ": use this address for the next connection.",
                  LogType::kInfo);
}

/// What the lidar holds, whatever the user is typing over it.
std::string CommandWriter::HeldText(const VarInfo& var) const {
  const ConfigParser::Value value = table_.ValueOf(var);
  return value.edited ? value.reading : value.text;
}
