#include "variables/table_places.h"

#include <optional>

#include "CmxClient/fov_command.h"
#include "variables/code_conflicts.h"
#include "variables/command_code.h"
#include "variables/hex_cell.h"
#include "variables/number_text.h"
#include "variables/set_payloads.h"

namespace {

std::string BrokenLine(size_t line) {
  return "line " + std::to_string(line) + " of the table is broken";
}

std::string WrongCode(size_t line) {
  return "the code of line " + std::to_string(line) + " is wrong";
}

std::string SetIndexOf(size_t line) { return "SetIndex of line " + std::to_string(line); }

std::string UnknownLength(size_t line) {
  return "the length of line " + std::to_string(line) + " is unknown";
}

}  // namespace

FieldGroup* LoadedTable::WriteGroupOf(const VarInfo& var) {
  return var.write == nullptr ? nullptr : writes.at(CommandKey(var.set_cmd));
}

void TablePlaces::Add(const TableRow& row, VarInfo* var) {
  Field field = FieldOf(row, *var);
  field.var = var;
  fields_.push_back(field);
  const int32_t natural = var->value_type->size;
  if (natural != 0 && natural != field.length) {
    // Type or length is wrong, and with it, maybe, the place of every field behind.
    Doubt(field, "VarLen of line " + std::to_string(var->line) + " does not fit its VarType");
  }
  if (!row.PayloadIsSound()) {
    Doubt(field, "GetCmdPayload of line " + std::to_string(var->line) + " is wrong");
  }
  if (var->value_type->kind == ValueKind::kUnknown &&
      ValueTypeOf(var->var_type).kind == ValueKind::kUnknown &&
      Trim(row.Cell(Column::kVarLen)).empty()) {
    TakeOutOfUse(field, UnknownLength(var->line));
  }
}

void TablePlaces::AddUnknownLength(const TableRow& row, const VarInfo& var) {
  TakeOutOfUse(FieldOf(row, var), UnknownLength(var.line));
}

void TablePlaces::AddLeftOut(const TableRow& row, uint32_t line) {
  VarInfo var;
  var.line = line;
  if (!row.ReadPlace(&var)) {
    AddUnknownLength(row, var);
    return;
  }
  const Field field = FieldOf(row, var);
  Hinder(field.write, BrokenLine(line));
  fields_.push_back(field);
}

void TablePlaces::AddBroken(const TableRow& row, uint32_t line) {
  const std::string reason = BrokenLine(line);
  const bool has_commands = row.Has(Column::kGet) && row.Has(Column::kSet);
  if (!has_commands) {
    DoubtBeside(&reads_, reason);
    DoubtBeside(&writes_, reason);
    return;
  }
  if (row.Has(Column::kVarType) && row.Has(Column::kVarLen) && row.Has(Column::kGetCmdPayload)) {
    AddLeftOut(row, line);
    return;
  }
  VarInfo var;
  var.line = line;
  var.set_cmd = row.SharedCell(Column::kSet);
  TakeOutOfUse(FieldOf(row, var), reason);
  if (const std::string get_cmd(row.Cell(Column::kGet)); !get_cmd.empty()) {
    if (const std::string* const key = KeyOf(&reads_, get_cmd, line)) {
      // The payload that it is sent with stands behind the fault, so it may be any.
      out_of_use_.AddReads(*key, reason);
    } else {
      DoubtBeside(&reads_, reason);
    }
  }
}

void TablePlaces::Fill() {
  PlaceAll();
  for (const FieldGroup& group : table_.groups) {
    if (group.length > kMaxLength) {
      out_of_use_.Add(&group, "its fields have more than 16 MiB; write a smaller VarLen");
    }
  }
  TakeSetPayloads(&table_, &out_of_use_, &faults_);
  CheckDownloads(table_, &out_of_use_, &faults_);
  FindCodeConflicts(table_, &out_of_use_, &faults_);
  HinderWhereDoubtful();
  out_of_use_.Apply(&table_, &faults_);
  for (const auto& [key, group] : table_.writes) {
    if (!hinders_all_.empty()) {
      Hinder(group, hinders_all_);
    }
    if (!group->fields.empty() &&
        IsCommand(group->fields.front()->set_cmd, kavel::lidar::kFovCommand) &&
        group->length != int64_t{kavel::lidar::kFovPayloadSize}) {
      const VarInfo& first = *group->fields.front();
      faults_.Fault(first.line, "the field-of-view table takes " +
                                    std::to_string(kavel::lidar::kFovPayloadSize) + " bytes, and " +
                                    first.set_cmd.str() + " has " + std::to_string(group->length) +
                                    "; write it as one raw variable of that length");
    }
  }
}

TablePlaces::Field TablePlaces::FieldOf(const TableRow& row, const VarInfo& var) {
  Field field{nullptr, nullptr, nullptr, var.offset, var.line};
  const bool takes_room = field.length != 0;
  if (!var.set_cmd.empty()) {
    field.write = WriteGroupOf(row, var);
    if (field.write == nullptr && takes_room) {
      DoubtBeside(&writes_, WrongCode(var.line));
    }
  }
  if (!var.get_cmd.empty()) {
    field.read = ReadGroupOf(row, var);
    if (field.read == nullptr) {
      Hinder(field.write, WrongCode(var.line));
      if (takes_room) {
        DoubtBeside(&reads_, WrongCode(var.line));
      }
    }
  }
  return field;
}

FieldGroup* TablePlaces::ReadGroupOf(const TableRow& row, const VarInfo& var) {
  const std::string_view cell = row.Cell(Column::kGetCmdPayload);
  if (reads_.last != nullptr && var.get_cmd == reads_.last_text && cell == last_get_payload_) {
    EndDoubt(&reads_, reads_.last);
    return reads_.last;
  }
  const std::string* const command = KeyOf(&reads_, var.get_cmd, var.line);
  if (command == nullptr) {
    return nullptr;
  }
  reads_.last_text = var.get_cmd;
  last_get_payload_ = cell;
  // One that does not convert is none, and no error.
  auto payload = PayloadOfCell(cell);
  if (!payload) {
    faults_.Warn(var.line, "GetCmdPayload " + Quoted(cell) +
                               " is no row of hexadecimal pairs and is not sent; write pairs of "
                               "digits, such as 0x0102. Nothing that is read so is written until "
                               "then");
    payload.emplace();
  }
  table_.reads.insert(*command);
  std::string key = *command;
  key.append(payload->begin(), payload->end());
  FieldGroup*& group = read_groups_[key];
  if (group == nullptr) {
    group = &table_.groups.emplace_back();
    group->name = var.get_cmd.str() + last_get_payload_;
    group->fixed_payload = std::move(*payload);
  }
  reads_.last = group;
  EndDoubt(&reads_, group);
  return group;
}

FieldGroup* TablePlaces::WriteGroupOf(const TableRow& row, const VarInfo& var) {
  if (writes_.last == nullptr || var.set_cmd != writes_.last_text) {
    const std::string* const command = KeyOf(&writes_, var.set_cmd, var.line);
    if (command == nullptr) {
      return nullptr;
    }
    writes_.last_text = var.set_cmd;
    FieldGroup*& group = table_.writes[*command];
    if (group == nullptr) {
      group = &table_.groups.emplace_back();
      group->name = var.set_cmd;
    }
    writes_.last = group;
  }
  EndDoubt(&writes_, writes_.last);
  CheckSetIndex(row, var);
  return writes_.last;
}

// Null for a text that is no command, which is told.
const std::string* TablePlaces::KeyOf(Side* side, const std::string& text, size_t line) {
  const auto [found, is_new] = side->commands.try_emplace(text);
  Command& command = found->second;
  if (is_new) {
    command.key = CommandKey(text);
    command.problem = ProblemOfCommand(text);
    if (!command.problem.warning.empty()) {
      faults_.Warn(line, std::string(side->column) + ' ' + command.problem.warning);
    }
  }
  if (command.problem.fault.empty()) {
    return &command.key;
  }
  faults_.Fault(line, std::string(side->column) + ' ' + command.problem.fault +
                          ". It is not sent until then");
  return nullptr;
}

// The row between has a command that is not known: it may be one of those beside it.
void TablePlaces::DoubtBeside(Side* side, const std::string& reason) {
  out_of_use_.Add(side->last, reason);
  side->next_is_unusable = reason;
}

void TablePlaces::EndDoubt(Side* side, const FieldGroup* group) {
  if (!side->next_is_unusable.empty()) {
    out_of_use_.Add(group, side->next_is_unusable);
    side->next_is_unusable.clear();
  }
}

void TablePlaces::CheckSetIndex(const TableRow& row, const VarInfo& var) {
  const std::string_view cell = Trim(row.Cell(Column::kSetIndex));
  if (cell.empty()) {
    return;
  }
  const auto index = WholeNumber(cell);
  if (!index) {
    faults_.Fault(var.line, "SetIndex " + Quoted(cell) +
                                " is no whole number; write the field's place in " +
                                var.set_cmd.str() + ". It is not written until then");
    Hinder(writes_.last, SetIndexOf(var.line) + " is no number");
    return;
  }
  const auto [last, is_first] = set_indices_.try_emplace(writes_.last, *index);
  if (!is_first && *index <= last->second) {
    faults_.Fault(var.line, "SetIndex " + std::to_string(*index) + " of " + var.set_cmd.str() +
                                " does not ascend; write the rows in the order of the fields, and "
                                "more than " +
                                std::to_string(last->second) +
                                " here. It is not written until then");
    Hinder(writes_.last, SetIndexOf(var.line) + " does not ascend");
  }
  last->second = *index;
}

void TablePlaces::TakeOutOfUse(const Field& field, const std::string& reason) {
  out_of_use_.Add(field.read, reason);
  out_of_use_.Add(field.write, reason);
}

void TablePlaces::PlaceAll() {
  auto next = table_.variables.begin();
  for (const Field& field : fields_) {
    const bool is_variable = field.var != nullptr;
    if (is_variable && (next == table_.variables.end() || *next != field.var)) {
      // A later row replaces it: it takes no room either. Both were meant, and places with them.
      const std::string reason =
          "line " + std::to_string(field.line) + " has the GroupID and the Index of another row";
      Doubt(field, reason);
      continue;
    }
    next += is_variable ? 1 : 0;
    Place(field);
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
  } else if (field.var != nullptr) {
    field.var->get_cmd = SharedText();
  }
  if (field.write != nullptr) {
    if (field.var != nullptr) {
      field.var->write = field.write;
      field.var->set_start_pos = static_cast<int32_t>(field.write->length);
      field.write->fields.push_back(field.var);
    }
    field.write->length += field.length;
  } else if (field.var != nullptr) {
    field.var->set_cmd = SharedText();
  }
}

void TablePlaces::Doubt(const Field& field, const std::string& reason) {
  Hinder(field.write, reason);
  if (field.read != nullptr) {
    doubtful_.emplace(field.read, reason);
  }
}

// What is read at places that may be others is shown, but must not be written back.
void TablePlaces::HinderWhereDoubtful() {
  if (doubtful_.empty()) {
    return;
  }
  for (const Field& field : fields_) {
    const auto reason = doubtful_.find(field.read);
    if (reason != doubtful_.end()) {
      Hinder(field.write, reason->second);
    }
  }
}
