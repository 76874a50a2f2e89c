#include "variables/table_rules.h"

#include <exception>
#include <string_view>
#include <vector>

#include "variables/log_variables.h"
#include "variables/value_encoder.h"

namespace {

// A value that is wrong for another reason has been told already.
bool CanHoldItsDefault(const VarInfo& var) {
  const bool is_choice = var.type == kChoice || var.type == kTallChoice;
  return !is_choice && var.value_type->kind != ValueKind::kUnknown && FillsItsPlace(var);
}

void CheckDefaults(const LoadedTable& table, const FileFaults& faults) {
  std::vector<uint8_t> bytes;
  std::string error;
  for (const VarInfo* var : table.variables) {
    if (CanHoldItsDefault(*var) && !EncodeValueText(*var, var->default_val, &bytes, &error)) {
      faults.Fault(var->line, '"' + var->var_name + "\": DefaultValue " + error);
    }
  }
}

void CheckLogs(const LoadedTable& table, const FileFaults& faults) {
  for (const TableDirective& directive : table.directives) {
    if (directive.name() != kLogDirective || directive.cells.size() < 2) {
      continue;
    }
    const std::string& name = directive.cells[1];
    const uint32_t position = table.by_name.Find(table.rows, name);
    const VarInfo* var = position == VarIndex::kNone ? nullptr : &table.rows[position];
    if (var == nullptr || (var->get_cmd.empty() && var->set_cmd.empty())) {
      faults.Fault(directive.line,
                   "the log \"" + name + "\" is offered and no variable with a command");
    }
  }
}

}  // namespace

LoadedTable LoadModelTable(const std::string& path) {
  LoadedTable table;
  try {
    table = LoadTable(path);
  } catch (const std::exception& error) {
    table.path = path;
    FileFaults(path, &table.faults).Fault(0, error.what());
    return table;
  }
  const FileFaults faults(path, &table.faults);
  CheckDefaults(table, faults);
  CheckLogs(table, faults);
  SortByLine(&table.faults);
  return table;
}

void ApplyMonitorTableRules(LoadedTable* table) {
  CheckDefaults(*table, FileFaults(table->path, &table->faults));
  SortByLine(&table->faults);
}
