#include "variables/log_variables.h"

#include <algorithm>
#include <stdexcept>

#include "variables/hex_cell.h"

std::vector<const VarInfo*> OfferedLogs(const ConfigParser& table) {
  std::vector<const VarInfo*> offered;
  for (const TableDirective& directive : table.Directives()) {
    if (directive.cells.size() < 2 || directive.name() != kLogDirective ||
        directive.cells[1] == kOperationLog) {
      continue;
    }
    const VarInfo* var = table.FindByName(directive.cells[1]);
    const bool can_be_asked_for = var != nullptr && !(var->get_cmd.empty() && var->set_cmd.empty());
    if (can_be_asked_for && std::find(offered.begin(), offered.end(), var) == offered.end()) {
      offered.push_back(var);
    }
  }
  return offered;
}

std::unordered_set<std::string> DownloadNames(const LoadedTable& table) {
  std::unordered_set<std::string> names = {kOperationLog, kConfigFile};
  for (const TableDirective& directive : table.directives) {
    if (directive.name() == kLogDirective && directive.cells.size() > 1) {
      names.insert(directive.cells[1]);
    }
  }
  return names;
}

WireCommand DownloadRequestOf(const VarInfo& var, const std::string& called) {
  const std::string& text = var.get_cmd.empty() ? var.set_cmd : var.get_cmd;
  if (text.empty()) {
    throw std::invalid_argument("Can not find " + called + " command");
  }
  return LongCommandOf(text, PayloadOfCell(var.set_payload).value_or(std::vector<uint8_t>()));
}

WireCommand DownloadRequestOf(const ConfigParser& table, const std::string& name,
                              const std::string& called) {
  const VarInfo* var = table.FindByName(name);
  if (var == nullptr) {
    throw std::invalid_argument("Can not find " + called + " name");
  }
  return DownloadRequestOf(*var, called);
}
