#include "variables/table_places.h"

#include <exception>

#include "CmxClient/fov_command.h"
#include "variables/command_code.h"
#include "variables/hex_cell.h"

namespace {

std::string Quoted(const std::string& text) { return '"' + text + '"'; }

std::string BrokenLine(size_t line) {
  return "line " + std::to_string(line) + " of the table is broken";
}

}  // namespace

void TablePlaces::Add(const TableRow& row, VarInfo* var) {
  Field field = FieldOf(row, *var);
  field.var = var;
  if (!next_is_unusable_.empty()) {
    TakeOutOfUse(field, next_is_unusable_);
    next_is_unusable_.clear();
  }
  fields_.push_back(field);
}

void TablePlaces::AddUnknownLength(const TableRow& row, const VarInfo& var) {
  TakeOutOfUse(FieldOf(row, var), "the length of line " + std::to_string(var.line) + " is unknown");
}

void TablePlaces::AddLeftOut(const TableRow& row, uint32_t line) {
  VarInfo var;
  var.line = line;
  if (!row.ReadPlace(&var)) {
    AddUnknownLength(row, var);
    return;
  }
  const Field field = FieldOf(row, var);
  if (field.write != nullptr && field.write->obstacle.empty()) {
    field.write->obstacle = BrokenLine(line);
  }
  fields_.push_back(field);
}

void TablePlaces::AddBroken(const TableRow& row, uint32_t line) {
  const bool has_commands = row.Has(Column::kGet) && row.Has(Column::kSet);
  if (!has_commands) {
    next_is_unusable_ = BrokenLine(line);
    if (!fields_.empty()) {
      TakeOutOfUse(fields_.back(), next_is_unusable_);
    }
    return;
  }
  if (row.Has(Column::kVarType) && row.Has(Column::kVarLen) && row.Has(Column::kGetCmdPayload)) {
    AddLeftOut(row, line);
    return;
  }
  VarInfo var;
  var.line = line;
  var.set_cmd = row.SharedCell(Column::kSet);
  TakeOutOfUse(FieldOf(row, var), BrokenLine(line));
  if (const std::string get_cmd(row.Cell(Column::kGet)); !get_cmd.empty()) {
    // The payload that it is sent with stands behind the fault, so it may be any.
    unusable_reads_.emplace(CommandKey(get_cmd), BrokenLine(line));
  }
}

void TablePlaces::Fill() {
  auto next = table_.variables.begin();
  for (const Field& field : fields_) {
    const bool is_variable = field.var != nullptr;
    if (is_variable && (next == table_.variables.end() || *next != field.var)) {
      continue;  // a later row replaces it: it takes no room either
    }
    next += is_variable ? 1 : 0;
    Place(field);
  }
  for (const FieldGroup& group : table_.groups) {
    if (group.length > kMaxLength) {
      unusable_.emplace(&group, "its fields have more than 16 MiB");
    }
  }
  if (!unusable_.empty() || !unusable_reads_.empty()) {
    for (const Field& field : fields_) {
      if (field.var != nullptr) {
        TakeCommandsAway(field.var);
      }
    }
    for (FieldGroup& group : table_.groups) {
      if (unusable_.count(&group) != 0) {
        group.fields.clear();
      }
    }
  }
  CheckWrites();
}

TablePlaces::Field TablePlaces::FieldOf(const TableRow& row, const VarInfo& var) {
  Field field{nullptr, nullptr, nullptr, var.offset, var.line};
  if (!var.get_cmd.empty()) {
    field.read = ReadGroupOf(row, var);
  }
  if (!var.set_cmd.empty()) {
    field.write = WriteGroupOf(row, var);
  }
  return field;
}

FieldGroup* TablePlaces::ReadGroupOf(const TableRow& row, const VarInfo& var) {
  const std::string_view cell = row.Cell(Column::kGetCmdPayload);
  if (last_read_ != nullptr && var.get_cmd == last_get_ && cell == last_get_payload_) {
    return last_read_;
  }
  last_get_ = var.get_cmd;
  last_get_payload_ = cell;
  // One that does not convert is none, and no error.
  std::vector<uint8_t> payload = PayloadOfCell(cell).value_or(std::vector<uint8_t>());
  const std::string& command = KeyOf(&get_keys_, "Get", var);
  table_.reads.insert(command);
  std::string key = command;
  key.append(payload.begin(), payload.end());
  FieldGroup*& group = reads_[key];
  if (group == nullptr) {
    group = &table_.groups.emplace_back();
    group->name = var.get_cmd.str() + last_get_payload_;
    group->fixed_payload = std::move(payload);
  }
  last_read_ = group;
  return group;
}

FieldGroup* TablePlaces::WriteGroupOf(const TableRow& row, const VarInfo& var) {
  std::vector<uint8_t> payload;
  if (!row.Cell(Column::kSetCmdPayload).empty()) {
    payload = row.ReadPayload(Column::kSetCmdPayload);
  }
  if (last_write_ == nullptr || var.set_cmd != last_set_) {
    last_set_ = var.set_cmd;
    FieldGroup*& group = table_.writes[KeyOf(&set_keys_, "Set", var)];
    if (group == nullptr) {
      group = &table_.groups.emplace_back();
      group->name = var.set_cmd;
      group->fixed_payload = std::move(payload);
    }
    last_write_ = group;
  }
  CheckSetIndex(row, var);
  return last_write_;
}

// Of the row's command; a text that is none is a fault.
const std::string& TablePlaces::KeyOf(Keys* keys, const char* column, const VarInfo& var) {
  const std::string& text = (keys == &get_keys_ ? var.get_cmd : var.set_cmd).str();
  const auto [key, is_new] = keys->try_emplace(text);
  if (is_new) {
    key->second = CommandKey(text);
    CheckCommandText(column, text, var.line);
  }
  return key->second;
}

void TablePlaces::CheckCommandText(const char* column, const std::string& text, uint32_t line) {
  const std::string cell = std::string(column) + ' ' + Quoted(text);
  try {
    const WireCommand command = WireCommandOf(text);
    const bool is_short = text.size() < kLongCommandTextLength;
    size_t end = 0;  // of the number in the text: "0x2G" would be sent as 0x02
    if (is_short && (std::stol(text, &end, 0) != long{command.code} || end != text.size())) {
      fault_(line, cell + " is no command code from 0 to 255");
    }
  } catch (const std::exception& error) {
    fault_(line, cell + " is no command code: " + error.what());
  }
}

void TablePlaces::CheckSetIndex(const TableRow& row, const VarInfo& var) {
  const std::optional<int32_t> index = row.ReadSetIndex();
  if (!index) {
    return;
  }
  const auto [last, is_first] = set_indices_.try_emplace(last_write_, *index);
  if (!is_first && *index <= last->second) {
    fault_(var.line, "SetIndex " + std::to_string(*index) + " of " + var.set_cmd.str() +
                         " does not ascend; fields are written in the order of the rows");
  }
  last->second = *index;
}

void TablePlaces::TakeOutOfUse(const Field& field, const std::string& reason) {
  for (const FieldGroup* group : {field.read, field.write}) {
    if (group != nullptr) {
      unusable_.emplace(group, reason);
    }
  }
}

void TablePlaces::Place(const Field& field) {
  if (field.read != nullptr) {
    if (field.var != nullptr) {
      field.var->read = field.read;
      field.var->get_start_pos = static_cast<int32_t>(field.read->length);
      field.read->fields.push_back(field.var);
    }
    field.read->length += field.length;
  }
  if (field.write != nullptr) {
    if (field.var != nullptr) {
      field.var->write = field.write;
      field.var->set_start_pos = static_cast<int32_t>(field.write->length);
      field.write->fields.push_back(field.var);
    }
    field.write->length += field.length;
  }
}

void TablePlaces::TakeCommandsAway(VarInfo* var) {
  if (var->read != nullptr) {
    auto reason = unusable_.find(var->read);
    const auto by_command = unusable_reads_.find(CommandKey(var->get_cmd));
    if (reason != unusable_.end() || by_command != unusable_reads_.end()) {
      const std::string& text = reason != unusable_.end() ? reason->second : by_command->second;
      fault_(var->line,
             Quoted(var->var_name) + " is not read with " + var->get_cmd.str() + ": " + text);
      unusable_.emplace(var->read, text);
      var->get_cmd = SharedText();
      var->get_start_pos = 0;
      var->read = nullptr;
    }
  }
  const auto reason = unusable_.find(var->write);
  if (var->write != nullptr && reason != unusable_.end()) {
    fault_(var->line, Quoted(var->var_name) + " cannot be changed with " + var->set_cmd.str() +
                          ": " + reason->second);
    var->set_cmd = SharedText();
    var->set_start_pos = 0;
    var->write = nullptr;
  }
}

void TablePlaces::CheckWrites() {
  for (const auto& [key, group] : table_.writes) {
    if (group->fields.empty()) {
      continue;
    }
    const VarInfo& first = *group->fields.front();
    if (table_.reads.count(key) != 0) {
      fault_(first.line, "the code " + first.set_cmd.str() + " stands both in Get and in Set");
    }
    if (IsCommand(first.set_cmd, kavel::lidar::kFovCommand) &&
        group->length != int64_t{kavel::lidar::kFovPayloadSize}) {
      fault_(first.line, "the field-of-view table takes " +
                             std::to_string(kavel::lidar::kFovPayloadSize) + " bytes, and " +
                             first.set_cmd.str() + " has " + std::to_string(group->length));
    }
  }
}
