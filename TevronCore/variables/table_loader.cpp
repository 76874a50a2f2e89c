#include "variables/table_loader.h"

#include <algorithm>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "variables/fault_list.h"
#include "variables/table_places.h"
#include "variables/table_row.h"

namespace {

constexpr std::string_view kDirectiveGroup = "0";

void Report(const std::string& text) {
  std::cout << "ConfigParser::ExtractConfigInfo" << text << '\n';
}

/// One loading: rows to records, then their places in the payloads.
class Loader {
 public:
  Loader(const std::string& path, FaultList* faults) : faults_(*faults), places_(&table_, faults) {
    table_.path = path;
  }

  LoadedTable Load();

 private:
  void TellForeignSeparator();
  void LoadRows();
  void LoadRow();
  void LoadBrokenRow();
  void LoadRowWithoutId();
  bool IsEmptyRow() const;
  void KeepDirective();
  void KeepName(VarInfo* var);
  void KeepId(VarInfo* var);
  void ListVariables();
  void CheckSwitchReferences();
  void LeaveOutRest(const std::string& reason);
  void Fault(const std::string& reason) { faults_.Fault(csv_->line(), reason); }

  LoadedTable table_;
  FaultList& faults_;
  std::optional<CsvReader> csv_;
  std::optional<TableRow> row_;
  TablePlaces places_;
  bool has_replaced_ = false;
  bool refers_to_switch_ = false;
};

LoadedTable Loader::Load() {
  try {
    csv_.emplace(table_.path, CsvReader::Foreign::kReplaced);
  } catch (const std::runtime_error& error) {
    Report("(): error with csv_reader_, loc = " + table_.path);
    faults_.Fault(0, error.what());
    return std::move(table_);
  }
  if (csv_->header().names.empty() && csv_->Next() == CsvReader::Event::kBrokenRow) {
    // It is the header that is broken, which says more than a column that is not found.
    Report("(): error with csv_reader_, loc = " + table_.path + ":1");
    Fault(csv_->reason());
    return std::move(table_);
  }
  TellForeignSeparator();
  row_.emplace(*csv_, &table_.texts, &faults_);
  places_.HinderWrites(row_->CheckHeader());
  for (const size_t line : csv_->foreign_lines()) {
    faults_.Fault(line,
                  "the text is not UTF-8, and its unknown characters are shown as \uFFFD; save the "
                  "file as UTF-8");
  }
  LoadRows();
  row_.reset();
  csv_.reset();  // as large as the file
  ListVariables();
  places_.Fill();
  CheckSwitchReferences();
  std::cout << std::flush;
  return std::move(table_);
}

// What a spreadsheet writes in many countries. The column that is not found then says little.
void Loader::TellForeignSeparator() {
  const std::vector<std::string>& names = csv_->header().names;
  if (names.size() == 1 && names[0].find_first_of(";\t") != std::string::npos) {
    faults_.Fault(1, "the cells are separated by semicolons or tabs; save the file with commas");
  }
}

void Loader::LoadRows() {
  const size_t most_rows = std::min(csv_->MostRows(), kMaxTableRows);
  places_.Reserve(most_rows);
  table_.rows.reserve(most_rows);  // records do not move while they are referred to
  table_.by_id = VarIndex(&VarInfo::var_id, most_rows);
  table_.by_name = VarIndex(&VarInfo::var_name, most_rows);
  for (size_t count = 0;; ++count) {
    const CsvReader::Event event = csv_->Next();
    if (event == CsvReader::Event::kEnd) {
      if (csv_->gave_up()) {
        LeaveOutRest("more than " + std::to_string(CsvReader::kMaxBrokenRows) +
                     " broken rows; mend them");
      }
      return;
    }
    if (count == kMaxTableRows) {
      LeaveOutRest("more than " + std::to_string(kMaxTableRows) + " rows; write fewer");
      return;
    }
    if (event == CsvReader::Event::kBrokenRow) {
      LoadBrokenRow();
    } else {
      LoadRow();
    }
  }
}

// The rows that are not known may belong to any command.
void Loader::LeaveOutRest(const std::string& reason) {
  Fault(reason + ". The rest is left out, and nothing is written until then");
  places_.HinderWrites("the rows from line " + std::to_string(csv_->line()) +
                       " of the table on are left out");
}

void Loader::LoadRow() {
  if (row_->Cell(Column::kGroupId).empty() || row_->Cell(Column::kIndex).empty()) {
    LoadRowWithoutId();
    return;
  }
  if (row_->Cell(Column::kGroupId) == kDirectiveGroup) {
    KeepDirective();
    return;
  }
  if (row_->IsShifted()) {
    places_.AddBroken(*row_, static_cast<uint32_t>(csv_->line()));
    return;
  }
  VarInfo& var = table_.rows.emplace_back();
  var.line = static_cast<uint32_t>(csv_->line());
  var.table_position = static_cast<uint32_t>(table_.rows.size() - 1);
  if (!row_->ReadPlace(&var)) {
    places_.AddUnknownLength(*row_, var);
    table_.rows.pop_back();
    return;
  }
  places_.Add(*row_, &var);
  row_->ReadRest(&var);
  refers_to_switch_ |= !var.switch_var_id.empty();
  KeepName(&var);
  KeepId(&var);
}

void Loader::LoadRowWithoutId() {
  Report("(): WARNING: something with config file - Some var lacks \"GroupID\" or \"Index\"");
  std::cout << "---Detailed Infomation: file path = " << table_.path
            << ", var name = " << row_->Cell(Column::kVarName) << '\n';
  const auto line = static_cast<uint32_t>(csv_->line());
  if (IsEmptyRow()) {
    faults_.Warn(line, "the row has only empty cells; remove it");
  } else if (row_->Cell(Column::kGroupId) == kDirectiveGroup) {
    Fault("Index is empty; write which directive the row is. The row is left out");
  } else if (row_->IsShifted()) {
    places_.AddBroken(*row_, line);
  } else {
    Fault("GroupID or Index is empty; write both. The row is left out");
    places_.AddLeftOut(*row_, line);
  }
}

bool Loader::IsEmptyRow() const {
  size_t column = 0;
  while (column < csv_->cell_count() && csv_->Cell(column).empty()) {
    ++column;
  }
  return column == csv_->cell_count();
}

void Loader::LoadBrokenRow() {
  Report("(): error with csv_reader_, loc = " + table_.path + ":" + std::to_string(csv_->line()));
  Fault(csv_->reason());
  if (row_->Cell(Column::kGroupId) != kDirectiveGroup) {
    places_.AddBroken(*row_, static_cast<uint32_t>(csv_->line()));
  }
}

void Loader::KeepDirective() {
  const std::vector<std::string>& header = csv_->header().names;
  if (table_.directives.empty() && (header[0] != "GroupID" || header[1] != "Index")) {
    Fault("a table with directives begins with the columns GroupID and Index; write them first");
  }
  std::vector<std::string> cells;
  for (size_t column = 1; column < csv_->cell_count(); ++column) {
    if (const std::string_view cell = csv_->Cell(column); !cell.empty()) {
      cells.emplace_back(cell);
    }
  }
  table_.directives.push_back({csv_->line(), std::move(cells)});
}

void Loader::KeepName(VarInfo* var) {
  uint32_t* slot = &table_.by_name.Position(table_.rows, var->var_name);
  if (*slot != VarIndex::kNone) {
    const std::string name = var->var_name;
    const uint32_t earlier_line = table_.rows[*slot].line;
    var->var_name += '_' + var->set_cmd.str();
    slot = &table_.by_name.Position(table_.rows, var->var_name);
    if (*slot != VarIndex::kNone) {
      var->var_name += '_' + var->var_id;
      slot = &table_.by_name.Position(table_.rows, var->var_name);
    }
    Report(var->var_name + " is used in other cmd");  // without a separator on purpose
    Fault("VarName " + Quoted(name) + " is that of line " + std::to_string(earlier_line) +
          "; write another. It is shown as " + Quoted(var->var_name) + " until then");
  }
  if (*slot == VarIndex::kNone) {
    *slot = var->table_position;
  }
}

void Loader::KeepId(VarInfo* var) {
  uint32_t& slot = table_.by_id.Position(table_.rows, var->var_id);
  if (slot != VarIndex::kNone) {
    Report(
        "(): ERROR with config file. There are vars with the same var_id. Some of them will be "
        "overwritten");
    Report("(): --- Details: file path = " + table_.path + ", var_id =" + var->var_id +
           ", var_name = " + var->var_name);
    const VarInfo& earlier = table_.rows[slot];
    Fault("GroupID and Index " + var->var_id + " are those of line " +
          std::to_string(earlier.line) +
          "; write another Index. This row replaces that one until then");
    has_replaced_ = true;
  }
  slot = var->table_position;
}

void Loader::ListVariables() {
  table_.variables.reserve(table_.rows.size());
  for (const VarInfo& var : table_.rows) {
    if (!has_replaced_ || table_.by_id.Find(table_.rows, var.var_id) == var.table_position) {
      table_.variables.push_back(&var);
    }
  }
  if (!has_replaced_) {
    return;
  }
  table_.by_name.Clear();
  for (const VarInfo* var : table_.variables) {
    uint32_t& slot = table_.by_name.Position(table_.rows, var->var_name);
    slot = slot == VarIndex::kNone ? var->table_position : slot;
  }
}

void Loader::CheckSwitchReferences() {
  if (!refers_to_switch_) {
    return;
  }
  for (VarInfo& var : table_.rows) {
    if (var.switch_var_id.empty()) {
      continue;
    }
    const uint32_t position = table_.by_id.Find(table_.rows, var.switch_var_id);
    if (position == VarIndex::kNone || table_.rows[position].type != kSwitch) {
      faults_.Fault(var.line, "Options: " + var.switch_var_id +
                                  " is no switch; write GroupID and Index of one behind @. The "
                                  "value is always checked until then");
      var.switch_var_id.clear();
    }
  }
}

}  // namespace

LoadedTable LoadTable(const std::string& path, FaultList* faults) {
  return Loader(path, faults).Load();
}

LoadedTable LoadTable(const std::string& path) {
  FaultList faults(path);
  LoadedTable table = LoadTable(path, &faults);
  table.faults = faults.Take();
  return table;
}
