#include "variables/table_row.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <utility>
#include <variant>

#include "variables/hex_cell.h"
#include "variables/number_text.h"
#include "variables/options_cell.h"
#include "variables/row_rules.h"
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

std::string NameOf(Column column) { return kNames[static_cast<size_t>(column)]; }

// Bytes of a count of seconds.
constexpr int32_t kLongestDuration = 8;

// Characters that the two have alike, from the front and from the back.
size_t AlikeAtTheEnds(std::string_view a, std::string_view b) {
  const auto is_same = [](char one, char other) {
    return std::tolower(static_cast<unsigned char>(one)) ==
           std::tolower(static_cast<unsigned char>(other));
  };
  const auto front = std::mismatch(a.begin(), a.end(), b.begin(), b.end(), is_same);
  const auto back = std::mismatch(a.rbegin(), a.rend(), b.rbegin(), b.rend(), is_same);
  return static_cast<size_t>((front.first - a.begin()) + (back.first - a.rbegin()));
}

// The name that was meant by the header's, or null: the same to someone who looks at it with a
// spreadsheet, or a long one but for one letter.
const char* NameMeantBy(std::string_view header) {
  constexpr size_t kShort = 5;
  header = Trim(header);
  const char* meant = nullptr;
  for (const std::string_view name : kNames) {
    const size_t alike = AlikeAtTheEnds(header, name);
    if (alike == 2 * name.size() && header.size() == name.size()) {
      return name.data();
    }
    if (name.size() > kShort && alike + 1 >= std::max(header.size(), name.size())) {
      meant = name.data();
    }
  }
  return meant;
}

}  // namespace

TableRow::TableRow(const CsvReader& csv, TextPool* texts, FaultList* faults)
    : csv_(csv), texts_(*texts), faults_(*faults) {
  for (size_t column = 0; column < kNames.size(); ++column) {
    columns_[column] = column < static_cast<size_t>(Column::kGetCmdPayload)
                           ? csv.header().Column(kNames[column])
                           : csv.header().FindColumn(kNames[column]).value_or(kNoColumn);
  }
}

std::string TableRow::CheckHeader() const {
  std::string obstacle;
  const std::vector<std::string>& header = csv_.header().names;
  const auto is_known = [](const std::string& column) {
    return std::find(kNames.begin(), kNames.end(), column) != kNames.end();
  };
  for (const char* const name : kNames) {
    const auto is_name = [name](const std::string& column) { return column == name; };
    if (std::count_if(header.begin(), header.end(), is_name) > 1) {
      faults_.Fault(1, "the column " + std::string(name) +
                           " stands twice; leave one of them. Nothing is written until then");
      obstacle = "the column " + std::string(name) + " stands twice in the table";
    }
  }
  for (const std::string& column : header) {
    const char* const meant = is_known(column) ? nullptr : NameMeantBy(column);
    if (meant != nullptr) {
      faults_.Warn(1, "the column " + Quoted(column) + " is ignored; write " + meant);
    }
  }
  return obstacle;
}

std::string_view TableRow::Cell(Column column) const { return csv_.Cell(PositionOf(column)); }

SharedText TableRow::SharedCell(Column column) const {
  SharedText& last = last_[static_cast<size_t>(column)];
  if (const std::string_view cell = Cell(column); last != cell) {
    last = texts_.Share(cell);
  }
  return last;
}

bool TableRow::IsShifted() {
  // Nearly every row is like the one before it in what tells a shift.
  const std::string_view type = Cell(Column::kVarType);
  const std::string_view length = Cell(Column::kVarLen);
  if (type == usual_type_ && csv_.cell_count() <= csv_.header().names.size() &&
      (length.empty() || length == usual_length_)) {
    return false;
  }
  const std::string& page = last_[static_cast<size_t>(Column::kFunctionModule)];
  const auto shift =
      FindShift(csv_, PositionOf(Column::kVarType), PositionOf(Column::kVarLen), page);
  if (shift) {
    shifted_line_ = line();
    trusted_cells_ = shift->trusted_cells;
    Fault(shift->reason + ". The row is left out");
  } else if (ValueTypeOf(type).kind != ValueKind::kUnknown && WholeNumber(length)) {
    usual_type_ = type;
    usual_length_ = length;
  }
  return shift.has_value();
}

bool TableRow::Has(Column column) const {
  const size_t position = PositionOf(column);
  const size_t trusted = shifted_line_ == line() ? trusted_cells_ : csv_.cell_count();
  return position < trusted || (position == kNoColumn && trusted != 0);
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

bool TableRow::PayloadIsSound() const {
  const std::string_view cell = Cell(Column::kGetCmdPayload);
  return cell.empty() || PayloadOfCell(cell).has_value();
}

void TableRow::ReadRest(VarInfo* var) const {
  CheckId(Column::kGroupId);
  CheckId(Column::kIndex);
  var->index = WholeNumber(Trim(Cell(Column::kIndex))).value_or(0);
  var->var_name = Cell(Column::kVarName);
  var->permission = ReadNumber(Column::kPermission,
                               "write 0 for read-only, 1 for what the user may change; it is "
                               "read-only until then");
  var->unit = SharedCell(Column::kUnit);
  if (!ReadCoefficients(var)) {
    var->value_type = &kUnknownType;
  }
  var->default_val = SharedCell(Column::kDefaultValue);
  var->set_payload = SharedCell(Column::kSetCmdPayload);
  var->function_module = SharedCell(Column::kFunctionModule);
  var->timer_update =
      ReadNumber(Column::kTimerUpdate, "write 1 for what follows the page's refresh, else 0") != 0;
  ReadControl(var);
  CheckRow(*var, &faults_);
  if (!Cell(Column::kGetCmdPayload).empty() && var->get_cmd.empty()) {
    faults_.Warn(line(), "GetCmdPayload is not sent without Get; write both, or none");
  }
}

void TableRow::ReadControl(VarInfo* var) const {
  const std::string_view labels = Trim(Cell(Column::kOptionDescription));
  auto control = ParseControl(Cell(Column::kOptions), labels, *var);
  if (const auto* reason = std::get_if<std::string>(&control)) {
    // What a value can be is a question only where it is known what it means.
    if (var->value_type->kind != ValueKind::kUnknown) {
      Fault(*reason + ". It is a text field until then");
    }
    static_cast<Control&>(*var) = PlainText(*var);
    return;
  }
  static_cast<Control&>(*var) = std::get<Control>(std::move(control));
  const bool takes_labels =
      var->type == kChoice || var->type == kTallChoice || var->type == kSwitch;
  if (!labels.empty() && !takes_labels) {
    faults_.Warn(line(),
                 "OptionDescription labels nothing but choices and switches; leave it empty");
  }
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
      Fault("VarLen " + Quoted(cell) + " does not fit " + var->var_type.str() + "; write " +
            std::to_string(natural) + " or nothing. It cannot be changed until then");
    }
    if (var->value_type->kind == ValueKind::kDuration &&
        (*length == 0 || *length > kLongestDuration)) {
      Fault("VarLen " + Quoted(cell) + " does not fit DT; write 1 to " +
            std::to_string(kLongestDuration) + ". The value is not shown until then");
      var->value_type = &kUnknownType;
    }
    return true;
  }
  const bool is_text = cell.find_first_of("0123456789") == std::string_view::npos;
  Fault("VarLen " + Quoted(cell) + " is no whole number from 0 to " +
        std::to_string(kMaxValueLength) + "; write " +
        (natural == 0 ? "the length in bytes" : std::to_string(natural) + " or nothing") +
        (is_text ? ", and quotation marks around any cell with a comma" : "") +
        ". The row is left out");
  return false;
}

int32_t TableRow::ReadNumber(Column column, const char* what_to_write) const {
  const std::string_view cell = Trim(Cell(column));
  if (cell.empty()) {
    return 0;
  }
  const auto number = WholeNumber(cell);
  if (!number) {
    Fault(NameOf(column) + ' ' + Quoted(cell) + " is no whole number; " + what_to_write);
  }
  return number.value_or(0);
}

// The id is what the cells say; as numbers they are what "@" refers to.
void TableRow::CheckId(Column column) const {
  const std::string_view cell = Cell(column);
  const bool has_padding = cell.size() > 1 && cell.front() == '0';
  const bool is_negative = !cell.empty() && cell.front() == '-';
  if (is_negative || has_padding || !WholeNumber(cell)) {
    Fault(NameOf(column) + ' ' + Quoted(cell) +
          " is no whole number; write digits alone, without blanks and leading zeros");
  }
}

// What a coefficient is instead cannot be known, so neither can what the value means.
bool TableRow::ReadCoefficients(VarInfo* var) const {
  const auto coefficient = ReadCoefficient(Column::kCoefficient, 1.0F);
  const auto set_coefficient = ReadCoefficient(Column::kSetCoefficient, coefficient.value_or(1.0F));
  if (!coefficient || !set_coefficient) {
    return false;
  }
  var->coefficient = *coefficient;
  var->set_coefficient = *set_coefficient;
  if (std::signbit(*coefficient) != std::signbit(*set_coefficient)) {
    faults_.Warn(line(),
                 "Coefficient and SetCoefficient have different signs, so that what is written is "
                 "read with the other sign; give them the same");
  }
  return true;
}

std::optional<float> TableRow::ReadCoefficient(Column column, float when_empty) const {
  const std::string_view cell = Trim(Cell(column));
  if (cell.empty()) {
    return when_empty;
  }
  const auto coefficient = DecimalNumber(cell);
  if (coefficient && *coefficient != 0.0F) {
    return coefficient;
  }
  Fault(NameOf(column) + ' ' + Quoted(cell) +
        " is no number other than 0; write one with a point, such as 0.5. The value is neither "
        "shown nor changed until then");
  return std::nullopt;
}
