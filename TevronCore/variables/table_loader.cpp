#include "variables/table_loader.h"

#include <algorithm>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "variables/command_code.h"
#include "variables/number_text.h"
#include "variables/table_places.h"
#include "variables/table_row.h"

namespace {

constexpr std::string_view kDirectiveGroup = "0";

void Report(const std::string& text) {
  std::cout << "ConfigParser::ExtractConfigInfo" << text << '\n';
}

std::string Quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

/// One loading: rows to records, then their places in the payloads.
class Loader {
 public:
  explicit Loader(const std::string& path)
      : places_(&table_, [this](size_t line, const std::string& text) { FaultAt(line, text); }) {
    table_.path = path;
  }

  LoadedTable Load();

 private:
  void LoadRows();
  void LoadRow();
  void LoadBrokenRow();
  void LoadRowWithoutId();
  void KeepDirective();
  void KeepName(VarInfo* var);
  void KeepId(VarInfo* var);
  void ListVariables();
  void CheckSwitchReferences();
  void Fault(const std::string& reason) { FaultAt(csv_->line(), reason); }
  void FaultAt(size_t line, const std::string& reason);

  LoadedTable table_;
  std::optional<CsvReader> csv_;
  std::optional<TableRow> row_;
  TablePlaces places_;
  bool has_replaced_ = false;
  bool refers_to_switch_ = false;
};

LoadedTable Loader::Load() {
  try {
    csv_.emplace(table_.path);
  } catch (const std::runtime_error& error) {
    Report("(): error with csv_reader_, loc = " + table_.path);
    table_.faults.push_back({0, error.what()});
    return std::move(table_);
  }
  if (csv_->header().names.empty() && csv_->Next() == CsvReader::Event::kBrokenRow) {
    // It is the header that is broken, which says more than a column that is not found.
    Report("(): error with csv_reader_, loc = " + table_.path + ":1");
    Fault(csv_->reason());
    return std::move(table_);
  }
  row_.emplace(*csv_, &table_.texts, [this](const std::string& reason) { Fault(reason); });
  LoadRows();
  row_.reset();
  csv_.reset();  // as large as the file
  ListVariables();
  places_.Fill();
  CheckSwitchReferences();
  SortByLine(&table_.faults);
  std::cout << std::flush;
  return std::move(table_);
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
      return;
    }
    if (count == kMaxTableRows) {
      Fault("more than " + std::to_string(kMaxTableRows) + " rows; the rest is left out");
      return;
    }
    if (event == CsvReader::Event::kBrokenRow) {
      LoadBrokenRow();
    } else {
      LoadRow();
    }
  }
}

void Loader::FaultAt(size_t line, const std::string& reason) {
  FileFaults(table_.path, &table_.faults).Fault(line, reason);
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
  Fault("GroupID or Index is empty; the row is left out");
  if (row_->Cell(Column::kGroupId) != kDirectiveGroup) {
    places_.AddLeftOut(*row_, static_cast<uint32_t>(csv_->line()));
  }
}

void Loader::LoadBrokenRow() {
  Report("(): error with csv_reader_, loc = " + table_.path + ":" + std::to_string(csv_->line()));
  Fault(csv_->reason());
  if (row_->Cell(Column::kGroupId) != kDirectiveGroup) {
    places_.AddBroken(*row_, static_cast<uint32_t>(csv_->line()));
  }
}

void Loader::KeepDirective() {
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
    var->var_name += '_' + var->set_cmd.str();
    slot = &table_.by_name.Position(table_.rows, var->var_name);
    if (*slot != VarIndex::kNone) {
      var->var_name += '_' + var->var_id;
      slot = &table_.by_name.Position(table_.rows, var->var_name);
    }
    Report(var->var_name + " is used in other cmd");  // without a separator on purpose
    Fault("VarName " + Quoted(name) + " is taken by an earlier row; this one is shown as " +
          Quoted(var->var_name));
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
          std::to_string(earlier.line) + ", which this row replaces");
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
      FaultAt(var.line,
              "Options: " + var.switch_var_id + " is no switch; the value is always checked");
      var.switch_var_id.clear();
    }
  }
}

}  // namespace

LoadedTable LoadTable(const std::string& path) { return Loader(path).Load(); }
