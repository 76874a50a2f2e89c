#include "variables/monitor_tables.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <map>
#include <string_view>
#include <utility>

#include "variables/table_rules.h"

namespace {

constexpr std::string_view kHead = "Monitor_";
constexpr std::string_view kTail = ".csv";

bool EndsAsTable(std::string_view name) {
  return name.size() >= kTail.size() &&
         std::equal(kTail.begin(), kTail.end(), name.end() - kTail.size(), [](char lower, char c) {
           return lower == (c >= 'A' && c <= 'Z' ? c + 32 : c);
         });
}

/// The files of one folder by version. Of two names that differ only in the case of ".csv" the
/// first counts.
std::map<std::string, std::string> FilesIn(const std::filesystem::path& folder) {
  std::map<std::string, std::string> files;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string version = MonitorVersionOf(entry->path().filename().string());
    if (version.empty()) {
      continue;
    }
    std::string& file = files[version];
    file = file.empty() ? entry->path().string() : std::min(file, entry->path().string());
  }
  return files;
}

std::map<std::string, std::string> FilesByVersion(const ConfigFolder& config,
                                                  const std::string& model) {
  std::map<std::string, std::string> files;
  for (const ConfigLayer& layer : config.layers()) {
    for (auto& [version, file] : FilesIn(layer.path + "/varID/" + model)) {
      files[version] = std::move(file);
    }
  }
  return files;
}

void TakeReadAway(VarInfo* var) {
  var->get_cmd = SharedText();
  var->read = nullptr;
}

void TakeWriteAway(VarInfo* var) {
  var->set_cmd = SharedText();
  var->write = nullptr;
}

/// Puts every row on the monitor page, and takes away whatever would change the lidar.
void MakeMonitor(const ConfigParser& base, const std::string& version, SharedText page,
                 LoadedTable* table, FaultList* faults) {
  for (VarInfo& var : table->rows) {
    var.function_module = page;
    var.timer_update = true;
    if (!base.WrittenBy(var.get_cmd).empty()) {
      faults->Fault(var.line, "Get " + var.get_cmd.str() + " is a command that writes in " +
                                  base.path() +
                                  "; write one that reads. It is not read until then");
      TakeReadAway(&var);
    }
    if (!var.set_cmd.empty()) {
      faults->Fault(var.line, "the values of a monitor table are never written; leave Set empty");
      TakeWriteAway(&var);
    }
  }
  table->writes.clear();
  // The same command in both tables is asked twice: each has places of its own in the answer.
  for (FieldGroup& group : table->groups) {
    group.name += " (" + version + ')';
  }
}

}  // namespace

std::string MonitorVersionOf(const std::string& file_name) {
  const std::string_view name = file_name;
  if (name.size() < kHead.size() + kTail.size() || name.substr(0, kHead.size()) != kHead ||
      !EndsAsTable(name)) {
    return {};
  }
  return std::string(name.substr(kHead.size(), name.size() - kHead.size() - kTail.size()));
}

std::vector<std::string> ListMonitorVersions(const ConfigFolder& config, const std::string& model) {
  std::vector<std::string> versions;
  for (const auto& [version, file] : FilesByVersion(config, model)) {
    versions.push_back(version);
  }
  return versions;
}

std::shared_ptr<ConfigParser> WithMonitorTable(const ConfigParser& base, const std::string& path,
                                               TableFaults* faults) {
  if (path.empty()) {
    return nullptr;
  }
  const VarInfo* block = MonitorBlockOf(base);
  if (block == nullptr) {
    faults->push_back({0, base.path() + ": no row has \"monitor\" for its Options",
                       TableFault::Severity::kFault, base.path()});
    return nullptr;
  }
  FaultList found(path);
  std::shared_ptr<ConfigParser> with_monitor;
  try {
    LoadedTable table = LoadTable(path, &found);
    ApplyMonitorTableRules(&table, &found);
    MakeMonitor(base, MonitorVersionOf(std::filesystem::path(path).filename().string()),
                block->function_module, &table, &found);
    if (!table.variables.empty()) {
      with_monitor = std::make_shared<ConfigParser>(base, std::move(table));
    }
  } catch (const std::exception& error) {
    found.Fault(0, error.what());
  }
  found.MoveTo(faults);
  return with_monitor;
}

std::string MonitorTablePath(const ConfigFolder& config, const std::string& model,
                             const std::string& version) {
  const auto files = FilesByVersion(config, model);
  const auto file = files.find(version);
  return file == files.end() ? std::string() : file->second;
}

const VarInfo* MonitorBlockOf(const ConfigParser& table) {
  const std::vector<const VarInfo*>& vars = table.InTableOrder();
  const auto block = std::find_if(vars.begin(), vars.end(), [](const VarInfo* var) {
    return var->type == kMonitor && !var->hidden && !var->function_module.empty();
  });
  return block == vars.end() ? nullptr : *block;
}

std::vector<const VarInfo*> DrawableVariables(const PageModel& pages, int page) {
  std::vector<const VarInfo*> vars = pages.VariablesOf(page);
  const auto is_still = [](const VarInfo* var) {
    const bool has_number =
        var->value_type->is_number() || var->value_type->kind == ValueKind::kDuration;
    return var->get_cmd.empty() || !var->set_cmd.empty() || !has_number;
  };
  vars.erase(std::remove_if(vars.begin(), vars.end(), is_still), vars.end());
  return vars;
}
