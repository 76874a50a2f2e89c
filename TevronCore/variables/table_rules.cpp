#include "variables/table_rules.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <unordered_set>
#include <vector>

#include "CmxClient/device_commands.h"
#include "CmxClient/fov_command.h"
#include "variables/command_code.h"
#include "variables/directive_rules.h"
#include "variables/feature_config.h"
#include "variables/log_variables.h"
#include "variables/monitor_tables.h"
#include "variables/number_text.h"
#include "variables/reserved_codes.h"
#include "variables/value_encoder.h"

namespace {

using kavel::lidar::IsValidFovTable;
using kavel::lidar::kFovCommand;
using kavel::lidar::kFovPayloadSize;

const VarInfo* Named(const LoadedTable& table, const std::string& name) {
  const uint32_t position = table.by_name.Find(table.rows, name);
  return position == VarIndex::kNone ? nullptr : &table.rows[position];
}

bool IsShown(const VarInfo& var) { return !var.hidden && !var.function_module.empty(); }

/// The variables of a table for which `condition` holds, in table order.
template <typename Condition>
std::vector<const VarInfo*> Variables(const LoadedTable& table, Condition condition) {
  std::vector<const VarInfo*> found;
  std::copy_if(table.variables.begin(), table.variables.end(), std::back_inserter(found),
               [&condition](const VarInfo* var) { return condition(*var); });
  return found;
}

// A value that is wrong for another reason has been told already.
bool CanHoldItsDefault(const VarInfo& var) {
  const bool is_choice = var.type == kChoice || var.type == kTallChoice;
  return !is_choice && var.value_type->kind != ValueKind::kUnknown && FillsItsPlace(var);
}

void CheckDefaults(const LoadedTable& table, FaultList* faults) {
  std::vector<uint8_t> bytes;
  std::string error;
  for (const VarInfo* var : table.variables) {
    if (CanHoldItsDefault(*var) && !EncodeValueText(*var, var->default_val, &bytes, &error)) {
      faults->Fault(var->line, Quoted(var->var_name) + ": DefaultValue " + error +
                                   "; write one that the type can hold, or none");
    }
  }
}

/// The screens compare the numbers of a lidar with the model's name and its first two letters.
bool NamesModel(const std::string& number, const std::string& model) {
  return number.find(model) != std::string::npos ||
         number.find(model.substr(0, 2)) != std::string::npos;
}

void CheckNumbers(const LoadedTable& table, const std::string& model, FaultList* faults) {
  const VarInfo* first_shown = nullptr;
  for (const VarInfo* var : table.variables) {
    first_shown = first_shown == nullptr && IsShown(*var) ? var : first_shown;
  }
  for (const char* name : {"PN", "SN"}) {
    const VarInfo* number = Named(table, name);
    if (number == nullptr) {
      faults->Fault(0, "there is no variable " + Quoted(name) +
                           "; write one on the first page, as a string with the command that reads "
                           "it in Get");
    } else if (!IsShown(*number) || number->function_module != first_shown->function_module.str()) {
      faults->Fault(
          number->line,
          Quoted(name) + " is not on the first page; write " +
              (first_shown == nullptr ? "its name" : Quoted(first_shown->function_module)) +
              " in FunctionModule and leave Options empty");
    }
  }
  const VarInfo* part = Named(table, "PN");
  const VarInfo* serial = Named(table, "SN");
  if (part != nullptr && serial != nullptr &&
      (part->default_val.empty() || serial->default_val.empty() ||
       !(NamesModel(part->default_val, model) || NamesModel(serial->default_val, model)))) {
    faults->Warn(part->line,
                 "a lidar with the DefaultValues of \"PN\" and \"SN\" is warned of as "
                 "one that does not match; write both, and " +
                     Quoted(model.substr(0, 2)) + " in one of them");
  }
}

/// A GroupID that no row has.
std::string FreeGroupId(const LoadedTable& table) {
  int32_t highest = 0;
  for (const VarInfo* var : table.variables) {
    highest = std::max(highest, WholeNumber(GroupIdOf(*var)).value_or(0));
  }
  return std::to_string(int64_t{highest} + 1);
}

/// "Restart" and "Reset": commands that the user gives from any page.
void CheckOrder(const LoadedTable& table, const char* name, uint8_t code, const char* code_text,
                FaultList* faults) {
  const VarInfo* order = Named(table, name);
  if (order == nullptr) {
    faults->Fault(0, "there is no variable " + Quoted(name) + "; write the row " +
                         FreeGroupId(table) + ",1,," + code_text + ",1," + name +
                         ",0,raw,,,,,,,0,0,,");
    return;
  }
  if (!IsCommand(order->set_cmd, code)) {
    faults->Fault(order->line,
                  "Set of " + Quoted(name) + " is " +
                      (order->set_cmd.empty() ? "none that can be sent" : Quoted(order->set_cmd)) +
                      "; write " + code_text);
  }
  if (order->value_type->kind != ValueKind::kRaw || order->offset != 0 ||
      !order->function_module.empty()) {
    faults->Fault(order->line,
                  Quoted(name) + " has to be raw with VarLen 0 and on no page; write it so");
  }
}

// Only the program writes the table of the field of view, whole and in its own layout.
void CheckFov(LoadedTable* table, FaultList* faults) {
  for (FieldGroup& group : table->groups) {
    const bool is_fov = !group.fields.empty() && group.fields.front()->write == &group &&
                        IsCommand(group.fields.front()->set_cmd, kFovCommand);
    if (!is_fov || group.length != int64_t{kFovPayloadSize}) {
      continue;  // another length has been told with the places
    }
    const VarInfo& var = *group.fields.front();
    if (group.fields.size() != 1 || var.value_type->kind != ValueKind::kRaw) {
      const std::string reason = "the field-of-view table has to be one raw variable of 42 bytes";
      faults->Fault(var.line, reason + ", alone in " + var.set_cmd.str() +
                                  "; write it so. It cannot be written until then");
      group.obstacle = group.obstacle.empty() ? reason : group.obstacle;
      continue;
    }
    std::vector<uint8_t> bytes;
    std::string ignored;
    if (!var.default_val.empty() && EncodeValueText(var, var.default_val, &bytes, &ignored) &&
        !IsValidFovTable(bytes)) {
      faults->Fault(var.line,
                    Quoted(var.var_name) +
                        ": DefaultValue is no field-of-view table; write the mode, 05 and "
                        "ten angles from 0 to 360 as hexadecimal pairs, or nothing");
    }
    if (var.get_cmd.empty() || !IsShown(var)) {
      faults->Warn(var.line, Quoted(var.var_name) +
                                 " is the field-of-view table, and nobody sees it; write the "
                                 "command that reads it in Get, and a page in FunctionModule");
    }
  }
}

void CheckMonitor(const LoadedTable& table, bool has_monitor_tables, FaultList* faults) {
  const std::vector<const VarInfo*> blocks =
      Variables(table, [](const VarInfo& var) { return var.type == kMonitor; });
  const VarInfo* first = nullptr;
  for (const VarInfo* block : blocks) {
    if (!IsShown(*block)) {
      faults->Fault(block->line,
                    "a row with the Options \"monitor\" needs a page; write its name in "
                    "FunctionModule");
    } else if (first == nullptr) {
      first = block;
    } else {
      faults->Fault(block->line, "line " + std::to_string(first->line) + " makes " +
                                     Quoted(first->function_module) +
                                     " the monitor page already; leave Options empty here");
    }
  }
  if (first == nullptr && has_monitor_tables) {
    faults->Fault(0,
                  "there are monitor tables for this model, and no row has \"monitor\" for its "
                  "Options; write one on the page that shall show them");
  }
}

void CheckFilePages(const LoadedTable& table, FaultList* faults) {
  const std::vector<const VarInfo*> files =
      Variables(table, [](const VarInfo& var) { return var.type == kFile; });
  for (const VarInfo* file : files) {
    if (!IsShown(*file)) {
      faults->Fault(file->line,
                    "a row with the Options \"file\" needs a page; write its name in "
                    "FunctionModule");
      continue;
    }
    if (file != files.front()) {
      faults->Warn(file->line, "line " + std::to_string(files.front()->line) +
                                   " is the panel for an upgrade already; leave one of them out");
      continue;
    }
    const auto is_saved = [file](const VarInfo& var) {
      return IsShown(var) && var.function_module == file->function_module.str() &&
             CanBeChanged(var);
    };
    for (const VarInfo* var : Variables(table, is_saved)) {
      faults->Fault(var->line, Quoted(var->var_name) + " cannot be saved: " +
                                   Quoted(file->function_module) + " has no Save because of line " +
                                   std::to_string(file->line) + "; write another page");
    }
  }
}

void CheckDownloads(const LoadedTable& table, FaultList* faults) {
  const std::unordered_set<std::string> names = DownloadNames(table);
  const auto is_named = [&names](const VarInfo& var) { return names.count(var.var_name) != 0; };
  for (const VarInfo* var : Variables(table, is_named)) {
    if (var->value_type->kind != ValueKind::kRaw || var->offset != 0 ||
        !var->function_module.empty()) {
      faults->Fault(var->line,
                    Quoted(var->var_name) +
                        " is downloaded as a file, so it has to be raw with VarLen 0 and "
                        "on no page; write it so");
    }
  }
}

void CheckWholeTable(const ConfigFolder& config, const std::string& model, LoadedTable* table,
                     FaultList* faults) {
  CheckDirectives(*table, faults);
  if (table->variables.empty()) {
    if (faults->empty()) {
      faults->Fault(0, "there is no variable; write a row for each that the lidar has");
    }
    return;
  }
  CheckNumbers(*table, model, faults);
  CheckOrder(*table, kRestart, kavel::lidar::kCmdRestart, "0x10", faults);
  CheckOrder(*table, kReset, kavel::lidar::kCmdFactoryReset, "0x25", faults);
  CheckDefaults(*table, faults);
  CheckDownloads(*table, faults);
  CheckMonitor(*table, !ListMonitorVersions(config, model).empty(), faults);
  CheckFov(table, faults);
  TableFaults of_the_features;  // told by whoever loads these
  const ModelFeatures features = LoadFeatures(config, model, &of_the_features);
  TakeReservedCodes(features.family, table, faults);
  CheckFilePages(*table, faults);
}

}  // namespace

LoadedTable LoadModelTable(const ConfigFolder& config, const std::string& model) {
  const std::string path = config.TableOf(model);
  LoadedTable table;
  FaultList faults(path);
  try {
    table = LoadTable(path, &faults);
    CheckWholeTable(config, model, &table, &faults);
  } catch (const std::exception& error) {
    table.path = path;
    faults.Fault(0, error.what());
  }
  table.faults = faults.Take();
  config.CheckLayers(&table.faults);
  return table;
}

void ApplyMonitorTableRules(LoadedTable* table, FaultList* faults) {
  const auto is_drawn = [](const VarInfo* var) {
    return !var->get_cmd.empty() &&
           (var->value_type->is_number() || var->value_type->kind == ValueKind::kDuration);
  };
  if (std::none_of(table->variables.begin(), table->variables.end(), is_drawn)) {
    faults->Warn(0,
                 "nothing here is drawn over time; write rows of numbers, with the command that "
                 "reads them in Get");
  }
  CheckDefaults(*table, faults);
  TakeReservedCodes(SerialFamily::kNone, table, faults);
  if (!table->directives.empty()) {
    faults->Warn(table->directives.front().line,
                 "directives do nothing in a monitor table; write them into the model's own");
  }
  for (const VarInfo* var : table->variables) {
    if (var->type == kMonitor || var->type == kFile) {
      faults->Fault(var->line,
                    "a monitor table has no row for the monitor block or a file; leave "
                    "Options empty");
    }
  }
}
