#include "variables/table_loader.h"

#include <algorithm>
#include <iostream>
#include <limits>
#include <stdexcept>
#include <utility>

#include "variables/command_code.h"
#include "variables/hex_cell.h"
#include "variables/number_text.h"
#include "variables/options_cell.h"

namespace {

constexpr std::string_view kDirectiveGroup = "0";

constexpr std::array<const char*, 17> kMandatoryColumnNames = {
    "GroupID",           "Index",          "Get",        "Set",
    "SetIndex",          "VarName",        "Permission", "VarType",
    "DefaultValue",      "Options",        "Unit",       "Coefficient",
    "OptionDescription", "FunctionModule", "VarLen",     "TimerUpdate",
    "SetCoefficient"};

// A column beyond every row: its cells are empty.
constexpr size_t kNoColumn = std::numeric_limits<size_t>::max();

void Report(const std::string& text) {
  std::cout << "ConfigParser::ExtractConfigInfo" << text << '\n';
}

std::string Quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

}  // namespace

void TableLoader::Load() {
  try {
    table_.emplace(parser_.path_);
  } catch (const std::runtime_error& error) {
    Report("(): error with csv_reader_, loc = " + parser_.path_);
    parser_.faults_.push_back({0, error.what()});
    return;
  }
  for (const CsvFault& fault : table_->faults()) {
    Report("(): error with csv_reader_, loc = " + parser_.path_ + ":" + std::to_string(fault.line));
    FaultAt(fault.line, fault.reason);
  }
  if (table_->column_count() == 0 && !table_->faults().empty()) {
    return;  // it is the header that is broken, which says more than a column that is not found
  }
  FindColumns();
  const size_t row_count = std::min(table_->row_count(), ConfigParser::kMaxRows);
  if (row_count < table_->row_count()) {
    FaultAt(table_->LineOf(row_count),
            "more than " + std::to_string(ConfigParser::kMaxRows) + " rows; the rest is left out");
  }
  parser_.by_id_.reserve(row_count);
  parser_.by_name_.reserve(row_count);
  rows_.reserve(row_count);
  for (size_t row = 0; row < row_count; ++row) {
    LoadRow(row);
  }
  PlaceInTableOrder();
  CheckSwitchReferences();
  std::cout << std::flush;
}

void TableLoader::FindColumns() {
  static_assert(kMandatoryColumnNames.size() == kMandatoryColumns);
  for (size_t column = 0; column < kMandatoryColumns; ++column) {
    columns_[column] = table_->Column(kMandatoryColumnNames[column]);
  }
  columns_[kGetCmdPayload] = table_->FindColumn("GetCmdPayload").value_or(kNoColumn);
  columns_[kSetCmdPayload] = table_->FindColumn("SetCmdPayload").value_or(kNoColumn);
}

void TableLoader::FaultAt(size_t line, const std::string& reason) {
  parser_.faults_.push_back(
      {line, parser_.path_ + ", line " + std::to_string(line) + ": " + reason});
}

void TableLoader::LoadRow(size_t row) {
  row_ = row;
  line_ = table_->LineOf(row);
  if (Cell(kGroupId).empty() || Cell(kIndex).empty()) {
    Report("(): WARNING: something with config file - Some var lacks \"GroupID\" or \"Index\"");
    std::cout << "---Detailed Infomation: file path = " << parser_.path_
              << ", var name = " << Cell(kVarName) << '\n';
    Fault("GroupID or Index is empty; the row is left out");
    return;
  }
  if (Cell(kGroupId) == kDirectiveGroup) {
    KeepDirective(row);
    return;
  }
  ConfigParser::Record& record = parser_.storage_.emplace_back();
  record.info.line = line_;
  if (ReadCells(&record.info)) {
    Insert(&record);
  } else {
    parser_.storage_.pop_back();
  }
}

void TableLoader::KeepDirective(size_t row) {
  std::vector<std::string> cells;
  for (size_t column = 1; column < table_->CellCount(row); ++column) {
    if (const std::string_view cell = table_->Cell(row, column); !cell.empty()) {
      cells.emplace_back(cell);
    }
  }
  parser_.directives_.push_back(std::move(cells));
}

// Whether the row describes a variable whose place among the others is known.
bool TableLoader::ReadCells(VarInfo* var) {
  var->group_id = Cell(kGroupId);
  if (!WholeNumber(Trim(var->group_id))) {
    Fault("GroupID " + Quoted(var->group_id) + " is no whole number");
  }
  var->var_id = var->group_id + '-' + Text(kIndex);
  var->index = ReadNumber(kIndex, "Index");
  var->var_name = Cell(kVarName);
  SetValueType(Cell(kVarType), var);
  ReadCommands(var);
  if (!ReadLength(var)) {
    return false;
  }
  var->permission = ReadNumber(kPermission, "Permission");
  var->check_enable = var->permission != 0 ? 1 : 0;
  var->unit = Cell(kUnit);
  if (!var->unit.empty()) {
    var->unit_suffix = " (" + var->unit + ')';
  }
  var->coefficient = ReadCoefficient(kCoefficient, "Coefficient", 1.0F);
  var->set_coefficient = ReadCoefficient(kSetCoefficient, "SetCoefficient", var->coefficient);
  var->default_val = Cell(kDefaultValue);
  var->function_module = Cell(kFunctionModule);
  var->timer_update = ReadNumber(kTimerUpdate, "TimerUpdate") != 0;
  const ValueKind kind = var->value_type->kind;
  if (kind == ValueKind::kText || kind == ValueKind::kRaw) {
    var->length_limit = var->offset;
  }
  const std::string reason = ReadOptions(Cell(kOptions), Cell(kOptionDescription), var);
  if (!reason.empty()) {
    Fault(reason + "; the variable becomes a text field");
  }
  CheckCells(*var);
  return true;
}

// A row without a usable length has no place for what follows it in its payloads, so these cannot
// be used at all: reading would show, and writing would store, other variables' bytes.
bool TableLoader::ReadLength(VarInfo* var) {
  const int32_t natural = var->value_type->size;
  const std::string_view cell = Trim(Cell(kVarLen));
  if (cell.empty()) {
    var->offset = natural == 0 ? 1 : natural;
    return true;
  }
  const auto length = WholeNumber(cell);
  if (length && *length >= 0 && *length <= ConfigParser::kMaxValueLength) {
    var->offset = *length;
    if (natural != 0 && natural != *length) {
      Fault("VarLen " + Quoted(cell) + " does not fit " + var->var_type + ", which takes " +
            std::to_string(natural));
    }
    return true;
  }
  const std::string reason = "VarLen " + Quoted(cell) + " is no whole number from 0 to " +
                             std::to_string(ConfigParser::kMaxValueLength);
  if (natural != 0) {
    var->offset = natural;
    Fault(reason + "; " + std::to_string(natural) + " is used");
    return true;
  }
  Fault(reason + "; the row is left out");
  layout_.TakeOutOfUse(*var);
  return false;
}

void TableLoader::ReadCommands(VarInfo* var) {
  var->get_cmd = Cell(kGet);
  var->set_cmd = Cell(kSet);
  var->read_payload_text = Cell(kGetCmdPayload);
  var->read_payload = ReadPayload(kGetCmdPayload, "GetCmdPayload");
  var->set_payload = ReadPayload(kSetCmdPayload, "SetCmdPayload");
  // Rows of one command mostly stand together.
  if (!var->get_cmd.empty() && var->get_cmd != last_get_) {
    last_get_ = var->get_cmd;
    if (read_commands_.insert(var->get_cmd).second) {
      parser_.commands_.try_emplace(var->get_cmd);
      CheckCommandText("Get", var->get_cmd);
    }
  }
  if (!var->set_cmd.empty() && var->set_cmd != last_set_) {
    last_set_ = var->set_cmd;
    ConfigParser::CommandUsage& usage = parser_.commands_[var->set_cmd];
    if (!usage.is_set) {
      usage.is_set = true;
      CheckCommandText("Set", var->set_cmd);
    }
  }
}

void TableLoader::CheckCommandText(std::string_view column, const std::string& text) {
  const std::string cell = std::string(column) + ' ' + Quoted(text);
  try {
    const WireCommand command = WireCommandOf(text);
    const bool is_short = text.size() < kLongCommandTextLength;
    size_t end = 0;  // of the number in the text: "0x2G" would be sent as 0x02
    if (is_short && (std::stol(text, &end, 0) != long{command.code} || end != text.size())) {
      Fault(cell + " is no command code from 0 to 255");
    }
  } catch (const std::exception& error) {
    Fault(cell + " is no command code: " + error.what());
  }
}

void TableLoader::CheckCells(const VarInfo& var) {
  if (var.var_name.empty()) {
    Fault("VarName is empty");
  }
  if (var.value_type->kind == ValueKind::kUnknown) {
    Fault("VarType " + Quoted(var.var_type) + " is unknown");
  }
  if (var.get_cmd.empty() && !var.set_cmd.empty() && var.value_type->kind != ValueKind::kRaw) {
    Fault("a variable with Set and without Get has to be raw");
  }
  const bool has_values = var.type == kChoice || var.type == kTallChoice;
  if (has_values && var.varname_value_to_option.count(var.default_val) == 0) {
    Fault("DefaultValue " + Quoted(var.default_val) + " is none of the Options");
  }
  for (size_t column = table_->column_count(); column < table_->CellCount(row_); ++column) {
    if (!table_->Cell(row_, column).empty()) {
      Fault("the row has more cells than the header");
      return;
    }
  }
}

int32_t TableLoader::ReadNumber(Column column, const char* name) {
  const std::string_view cell = Trim(Cell(column));
  if (cell.empty()) {
    return 0;
  }
  const auto number = WholeNumber(cell);
  if (!number) {
    Fault(std::string(name) + ' ' + Quoted(cell) + " is no whole number; 0 is used");
  }
  return number.value_or(0);
}

float TableLoader::ReadCoefficient(Column column, const char* name, float when_empty) {
  const std::string_view cell = Trim(Cell(column));
  if (cell.empty()) {
    return when_empty;
  }
  const auto coefficient = DecimalNumber(cell);
  if (!coefficient || *coefficient == 0.0F) {
    Fault(std::string(name) + ' ' + Quoted(cell) + " is no number other than 0; " +
          ShortText(when_empty) + " is used");
    return when_empty;
  }
  return *coefficient;
}

std::vector<uint8_t> TableLoader::ReadPayload(Column column, const char* name) {
  auto payload = PayloadOfCell(Cell(column));
  if (!payload) {
    Fault(std::string(name) + ' ' + Quoted(Cell(column)) +
          " is no row of hexadecimal pairs; no bytes are sent");
    return {};
  }
  return std::move(*payload);
}

void TableLoader::KeepName(ConfigParser::Record* record) {
  VarInfo& var = record->info;
  if (parser_.by_name_.try_emplace(var.var_name, record).second) {
    return;
  }
  const std::string name = var.var_name;
  var.var_name += '_' + var.set_cmd;
  if (parser_.by_name_.count(var.var_name) != 0) {
    var.var_name += '_' + var.var_id;
  }
  parser_.by_name_.try_emplace(var.var_name, record);
  Report(var.var_name + " is used in other cmd");  // without a separator on purpose
  Fault("VarName " + Quoted(name) + " is taken by an earlier row; this one is shown as " +
        Quoted(var.var_name));
}

void TableLoader::Insert(ConfigParser::Record* record) {
  VarInfo& var = record->info;
  KeepName(record);

  const std::string_view set_index = Trim(Cell(kSetIndex));
  rows_.push_back({WholeNumber(set_index), false});
  if (!rows_.back().set_index && !set_index.empty()) {
    Fault("SetIndex " + Quoted(set_index) + " is no whole number");
  }

  var.table_position = rows_.size() - 1;  // for now among all rows, replaced ones too
  const auto [known, is_new] = parser_.by_id_.try_emplace(var.var_id, record);
  if (!is_new) {
    Report(
        "(): ERROR with config file. There are vars with the same var_id. Some of them will be "
        "overwritten");
    Report("(): --- Details: file path = " + parser_.path_ + ", var_id =" + var.var_id +
           ", var_name = " + var.var_name);
    const VarInfo& earlier = known->second->info;
    Fault("GroupID and Index " + var.var_id + " are those of line " + std::to_string(earlier.line) +
          ", which this row replaces");
    rows_[earlier.table_position].replaced = true;
    known->second = record;
  }

  record->reading = var.default_val;
  parser_.Show(*record, var.default_val);
}

void TableLoader::PlaceInTableOrder() {
  parser_.records_.reserve(rows_.size());
  parser_.in_table_order_.reserve(rows_.size());
  auto record = parser_.storage_.begin();
  for (const Row& row : rows_) {
    VarInfo& var = record->info;
    if (row.replaced) {
      const auto named = parser_.by_name_.find(var.var_name);
      if (named != parser_.by_name_.end() && named->second == &*record) {
        parser_.by_name_.erase(named);
      }
    } else {
      var.table_position = parser_.records_.size();
      parser_.records_.push_back(&*record);
      parser_.in_table_order_.push_back(&var);
      Place(row, &var);
      refers_to_switch_ |= !var.switch_var_id.empty();
    }
    ++record;
  }
}

void TableLoader::Place(const Row& row, VarInfo* var) {
  const auto out_of_use = [this, var](const char* consequence, const std::string& command) {
    FaultAt(var->line, Quoted(var->var_name) + consequence + command +
                           " has a field of unknown length or is too long");
  };
  if (!var->get_cmd.empty() && !layout_.PlaceInReply(var)) {
    out_of_use(" is not read: the reply to ", var->get_cmd);
    var->get_cmd.clear();
  }
  if (var->set_cmd.empty()) {
    return;
  }
  if (usage_ == nullptr || var->set_cmd != last_set_) {
    last_set_ = var->set_cmd;
    usage_ = &parser_.commands_[var->set_cmd];
  }
  bool ascends = true;
  if (!layout_.PlaceInPayload(row.set_index, var, &ascends)) {
    out_of_use(" cannot be changed: the payload of ", var->set_cmd);
    usage_->written.clear();
    var->set_cmd.clear();
    return;
  }
  if (usage_->written.empty() && read_commands_.count(var->set_cmd) != 0) {
    FaultAt(var->line, "the code " + var->set_cmd + " stands both in Get and in Set");
  }
  if (!ascends) {
    FaultAt(var->line, "SetIndex " + std::to_string(*row.set_index) + " of " + var->set_cmd +
                           " does not ascend; fields are written in the order of the rows");
  }
  usage_->written.push_back(var);
}

void TableLoader::CheckSwitchReferences() {
  if (!refers_to_switch_) {
    return;
  }
  for (ConfigParser::Record* record : parser_.records_) {
    VarInfo& var = record->info;
    if (var.switch_var_id.empty()) {
      continue;
    }
    const VarInfo* controlling = parser_.Find(var.switch_var_id);
    if (controlling == nullptr || controlling->type != kSwitch) {
      FaultAt(var.line,
              "Options: " + var.switch_var_id + " is no switch; the value is always checked");
      var.switch_var_id.clear();
    }
  }
}
