#include "pages/payload_builder.h"

#include <QDebug>
#include <memory>
#include <stdexcept>
#include <utility>

#include "variables/command_code.h"
#include "variables/str_parser.h"

namespace {

void Append(const std::vector<uint8_t>& bytes, std::vector<uint8_t>* payload) {
  payload->insert(payload->end(), bytes.begin(), bytes.end());
}

std::vector<uint8_t> Convert(const VarInfo& var, const std::string& text) {
  std::unique_ptr<StrParser> parser = CreateStrParser(var.var_type);
  if (var.value_type->kind == ValueKind::kUnknown) {
    parser.reset();  // the table does not say what the number would be multiplied with
  }
  if (parser == nullptr) {
    qDebug().noquote() << "(): This var_type" << '"' + QString::fromStdString(var.var_type) + '"'
                       << "is not supported currently.";
    qDebug().noquote() << "strParser == nullptr, var_name:" << QString::fromStdString(var.var_name)
                       << ", var_type:" << QString::fromStdString(var.var_type)
                       << ", current_val:" << QString::fromStdString(text);
    throw std::runtime_error("Error with var type");
  }
  return parser->Parse(text, var.set_coefficient);
}

}  // namespace

void PayloadBuilder::Gather(const std::string& set_cmd) {
  for (const VarInfo* var : table_.WrittenBy(set_cmd)) {
    if (!var->write->obstacle.empty()) {
      throw std::runtime_error(var->write->obstacle);
    }
    const bool set_only = var->get_cmd.empty();
    const bool is_raw = var->value_type->kind == ValueKind::kRaw;
    const ConfigParser::Value value = table_.ValueOf(*var);
    if (set_only && !is_raw) {
      throw std::runtime_error(
          "There are undefined cases in the csv config file where there is a line with 'set' and "
          "no 'get', but the var_type is not 'raw'.");
    }
    // A "raw" value has no text to convert: its parser yields nothing, which would leave a hole in
    // a payload that the lidar expects to be full.
    if (!set_only && value.edited && is_raw) {
      throw std::runtime_error("Error with var type");
    }
    if (set_only || value.edited) {
      fields_[var] = {value.text, Convert(*var, value.text), value.edited};
    }
  }
}

void PayloadBuilder::Put(const VarInfo& var, std::string text, std::vector<uint8_t> bytes) {
  fields_[&var] = {std::move(text), std::move(bytes), true};
}

SetCommand PayloadBuilder::Build(const std::string& set_cmd) const {
  const std::vector<const VarInfo*> vars = table_.WrittenBy(set_cmd);
  const bool is_long = set_cmd.size() >= kLongCommandTextLength;
  WireCommand wire = is_long && !vars.empty()
                         ? WireCommandOf(set_cmd, vars.front()->write->fixed_payload)
                         : WireCommandOf(set_cmd);
  SetCommand command{wire.code, std::move(wire.payload), {}, {}};
  for (const VarInfo* var : vars) {
    const std::vector<uint8_t> bytes = BytesOf(*var);
    // What is alone and can only be set is a trigger, which carries nothing.
    const bool is_trigger = vars.size() == 1 && var->get_cmd.empty() && bytes.empty();
    if (!is_trigger && bytes.size() != static_cast<size_t>(var->offset)) {
      throw std::runtime_error(var->var_name + " takes " + std::to_string(bytes.size()) +
                               " bytes, but its place in the command has " +
                               std::to_string(var->offset) + ".");
    }
    Append(bytes, &command.payload);
    const auto field = fields_.find(var);
    if (field != fields_.end() && field->second.is_change) {
      command.changes.push_back({var, field->second.text, bytes});
      command.names += var->var_name + ", ";
    }
  }
  return command;
}

std::vector<uint8_t> PayloadBuilder::BytesOf(const VarInfo& var) const {
  const auto field = fields_.find(&var);
  if (field != fields_.end()) {
    return field->second.bytes;
  }
  ConfigParser::Value value = table_.ValueOf(var);
  if (!value.has_bytes) {
    throw std::runtime_error("Unknown error with this var: It has no current_val. var_name = " +
                             var.var_name);
  }
  return std::move(value.bytes);
}
