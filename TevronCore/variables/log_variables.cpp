#include "variables/log_variables.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

#include "variables/hex_cell.h"

namespace {

constexpr std::string_view kLogDirective = "log";

}  // namespace

std::vector<const VarInfo*> OfferedLogs(const ConfigParser& table, TableFaults* faults) {
  std::vector<const VarInfo*> offered;
  for (const std::vector<std::string>& directive : table.Directives()) {
    if (directive.size() < 2 || directive[0] != kLogDirective || directive[1] == kOperationLog) {
      continue;
    }
    const VarInfo* var = table.FindByName(directive[1]);
    const bool can_be_asked_for = var != nullptr && !(var->get_cmd.empty() && var->set_cmd.empty());
    if (!can_be_asked_for) {
      if (faults != nullptr) {
        faults->push_back({0, table.path() + ": the log \"" + directive[1] +
                                  "\" is offered and no variable with a command"});
      }
    } else if (std::find(offered.begin(), offered.end(), var) == offered.end()) {
      offered.push_back(var);
    }
  }
  return offered;
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
