#include "variables/table_row.h"

#include <algorithm>
#include <utility>
#include <variant>

#include "variables/hex_cell.h"
#include "variables/number_text.h"
#include "variables/options_cell.h"
#include "variables/table_loader.h"

namespace {

constexpr std::array<const char*, static_cast<size_t>(Column::kCount)> kNames = {
    "GroupID",           "Index",          "Get",           "Set",
    "SetIndex",          "VarName",        "Permission",    "VarType",
    "DefaultValue",      "Options",        "Unit",          "Coefficient",
    "OptionDescription", "FunctionModule", "VarLen",        "TimerUpdate",
    "SetCoefficient",    "GetCmdPayload",  "SetCmdPayload",
};

// A column beyond every row: its cells are empty.
constexpr size_t kNoColumn = std::numeric_limits<size_t>::max();

std::string Quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

std::string NameOf(Column column) { return kNames[static_cast<size_t>(column)]; }

}  // namespace

TableRow::TableRow(const CsvReader& csv, TextPool* texts, FaultHandler fault)
    : csv_(csv), texts_(*texts), fault_(std::move(fault)) {
  for (size_t column = 0; column < kNames.size(); ++column) {
    columns_[column] = column < static_cast<size_t>(Column::kGetCmdPayload)
                           ? csv.header().Column(kNames[column])
                           : csv.header().FindColumn(kNames[column]).value_or(kNoColumn);
  }
}

std::string_view TableRow::Cell(Column column) const {
  return csv_.Cell(columns_[static_cast<size_t>(column)]);
}

SharedText TableRow::SharedCell(Column column) const {
  SharedText& last = last_[static_cast<size_t>(column)];
  if (const std::string_view cell = Cell(column); last != cell) {
    last = texts_.Share(cell);
  }
  return last;
}

bool TableRow::Has(Column column) const {
  const size_t position = columns_[static_cast<size_t>(column)];
  return position == kNoColumn || position < csv_.cell_count();
}

bool TableRow::ReadPlace(VarInfo* var) const {
  const std::string_view group_id = Cell(Column::kGroupId);
  var->group_id_size = static_cast<uint32_t>(group_id.size());
  var->var_id.append(group_id).append(1, '-').append(Cell(Column::kIndex));
  var->get_cmd = SharedCell(Column::kGet);
  var->set_cmd = SharedCell(Column::kSet);
  SetValueType(SharedCell(Column::kVarType), var);
  return ReadLength(var);
}

void TableRow::ReadRest(VarInfo* var) const {
  if (const std::string_view group_id = Cell(Column::kGroupId); !WholeNumber(Trim(group_id))) {
    fault_("GroupID " + Quoted(group_id) + " is no whole number");
  }
  var->index = ReadNumber(Column::kIndex);
  var->var_name = Cell(Column::kVarName);
  var->permission = ReadNumber(Column::kPermission);
  var->unit = SharedCell(Column::kUnit);
  var->coefficient = ReadCoefficient(Column::kCoefficient, 1.0F);
  var->set_coefficient = ReadCoefficient(Column::kSetCoefficient, var->coefficient);
  var->default_val = SharedCell(Column::kDefaultValue);
  var->set_payload = SharedCell(Column::kSetCmdPayload);
  var->function_module = SharedCell(Column::kFunctionModule);
  var->timer_update = ReadNumber(Column::kTimerUpdate) != 0;
  auto control = ParseControl(Cell(Column::kOptions), Cell(Column::kOptionDescription), *var);
  if (const auto* reason = std::get_if<std::string>(&control)) {
    fault_(*reason + "; the variable becomes a text field");
    control = PlainText(*var);
  }
  static_cast<Control&>(*var) = std::get<Control>(std::move(control));
  Check(*var);
}

bool TableRow::ReadLength(VarInfo* var) const {
  const int32_t natural = var->value_type->size;
  const std::string_view cell = Trim(Cell(Column::kVarLen));
  if (cell.empty()) {
    return true;
  }
  const auto length = WholeNumber(cell);
  if (length && *length >= 0 && *length <= kMaxValueLength) {
    var->offset = *length;
    if (natural != 0 && natural != *length) {
      fault_("VarLen " + Quoted(cell) + " does not fit " + var->var_type.str() + ", which takes " +
             std::to_string(natural));
    }
    return true;
  }
  const std::string reason =
      "VarLen " + Quoted(cell) + " is no whole number from 0 to " + std::to_string(kMaxValueLength);
  if (natural == 0) {
    fault_(reason + "; the row is left out");
    return false;
  }
  fault_(reason + "; " + std::to_string(natural) + " is used");
  return true;
}

std::optional<int32_t> TableRow::ReadSetIndex() const {
  const std::string_view cell = Trim(Cell(Column::kSetIndex));
  const auto index = WholeNumber(cell);
  if (!index && !cell.empty()) {
    fault_("SetIndex " + Quoted(cell) + " is no whole number");
  }
  return index;
}

int32_t TableRow::ReadNumber(Column column) const {
  const std::string_view cell = Trim(Cell(column));
  if (cell.empty()) {
    return 0;
  }
  const auto number = WholeNumber(cell);
  if (!number) {
    fault_(NameOf(column) + ' ' + Quoted(cell) + " is no whole number; 0 is used");
  }
  return number.value_or(0);
}

float TableRow::ReadCoefficient(Column column, float when_empty) const {
  const std::string_view cell = Trim(Cell(column));
  if (cell.empty()) {
    return when_empty;
  }
  const auto coefficient = DecimalNumber(cell);
  if (!coefficient || *coefficient == 0.0F) {
    fault_(NameOf(column) + ' ' + Quoted(cell) + " is no number other than 0; " +
           ShortText(when_empty) + " is used");
    return when_empty;
  }
  return *coefficient;
}

std::vector<uint8_t> TableRow::ReadPayload(Column column) const {
  auto payload = PayloadOfCell(Cell(column));
  if (!payload) {
    fault_(NameOf(column) + ' ' + Quoted(Cell(column)) +
           " is no row of hexadecimal pairs; no bytes are sent");
    return {};
  }
  return std::move(*payload);
}

void TableRow::Check(const VarInfo& var) const {
  if (var.var_name.empty()) {
    fault_("VarName is empty");
  }
  if (var.value_type->kind == ValueKind::kUnknown) {
    fault_("VarType " + Quoted(var.var_type) + " is unknown");
  }
  if (var.get_cmd.empty() && !var.set_cmd.empty() && var.value_type->kind != ValueKind::kRaw) {
    fault_("a variable with Set and without Get has to be raw");
  }
  const bool has_values = var.type == kChoice || var.type == kTallChoice;
  if (has_values && OptionIndexOf(var, var.default_val) < 0) {
    fault_("DefaultValue " + Quoted(var.default_val) + " is none of the Options");
  }
  for (size_t column = csv_.header().names.size(); column < csv_.cell_count(); ++column) {
    if (!csv_.Cell(column).empty()) {
      fault_("the row has more cells than the header");
      return;
    }
  }
}
