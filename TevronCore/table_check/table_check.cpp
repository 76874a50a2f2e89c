#include "table_check/table_check.h"

#include <algorithm>
#include <exception>
#include <set>
#include <stdexcept>

#include "auth/auth_algorithm.h"
#include "auth/auth_keys.h"
#include "auth/auth_rules.h"
#include "auth/auth_table.h"
#include "auth/tls_files.h"
#include "table_check/stray_files.h"
#include "variables/config_parser.h"
#include "variables/feature_config.h"
#include "variables/monitor_tables.h"
#include "variables/pages.h"
#include "variables/table_rules.h"

namespace {

// "1 page", "3 pages", "no page"
std::string Counted(size_t count, const std::string& what) {
  return (count == 0 ? "no" : std::to_string(count)) + ' ' + what + (count > 1 ? "s" : "");
}

std::string Listed(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) {
    text += (text.empty() ? "" : ", ") + name;
  }
  return text;
}

std::vector<std::string> ModelsToCheck(const ConfigFolder& folder, const std::string& model) {
  std::vector<std::string> models = folder.Models();
  if (models.empty()) {
    throw std::invalid_argument("there are no tables in " + folder.path() +
                                "/varID; name their folder with --config");
  }
  if (model.empty()) {
    return models;
  }
  if (std::find(models.begin(), models.end(), model) == models.end()) {
    throw std::invalid_argument("there is no model \"" + model + "\"; there are " + Listed(models));
  }
  return {model};
}

// "3 models, 2 of them protected"
std::string ProtectionIn(const std::string& path) {
  try {
    const AuthTable table(path);
    size_t enabled = 0;
    for (size_t row = 0; row < table.row_count(); ++row) {
      enabled += table.EnableOf(row) == "1" ? 1 : 0;
    }
    return Counted(table.row_count(), "model") + ", " +
           (enabled == 0 ? "none" : std::to_string(enabled)) + " of them protected";
  } catch (const std::exception&) {
    return "cannot be used";
  }
}

// "keys for the algorithms 1, 2, 3, 4; the demonstration set"
std::string KeysIn(const std::string& path) {
  const AuthKeys keys = LoadAuthKeys(path);
  std::vector<std::string> algorithms;
  for (const auto& [id, factory] : AuthAlgorithmFactories()) {
    const std::vector<const AuthKeyKind*> needed = KeysNeededBy(id);
    if (std::none_of(needed.begin(), needed.end(),
                     [&keys](const AuthKeyKind* kind) { return (keys.*kind->member).empty(); })) {
      algorithms.push_back(std::to_string(id));
    }
  }
  return (algorithms.empty() ? "keys for no algorithm"
                             : "keys for the algorithms " + Listed(algorithms)) +
         (IsDemoKeyFile(path) ? "; the demonstration set" : "");
}

/// One check of one folder.
class Check {
 public:
  Check(const ConfigFolder& folder, TableReport* report) : folder_(folder), report_(*report) {}

  void VariableTables(const std::string& model);
  void FeatureTables();
  void AuthTables(const std::vector<std::string>& models);

 private:
  void MonitorTables(const std::string& model, const ConfigParser& table);
  void Add(const TableFaults& faults);

  const ConfigFolder& folder_;
  TableReport& report_;
  std::set<std::string> told_;
};

// What is wrong with a whole file is found for every model anew.
void Check::Add(const TableFaults& faults) {
  for (const TableFault& fault : faults) {
    if (told_.insert(fault.text).second) {
      report_.findings.push_back(fault);
    }
  }
}

void Check::VariableTables(const std::string& model) {
  const ConfigParser table(LoadModelTable(folder_, model));
  report_.files.push_back({table.path(), Counted(table.InTableOrder().size(), "variable") + ", " +
                                             Counted(PageModel(table).pages().size(), "page") +
                                             ", " +
                                             Counted(table.Directives().size(), "directive")});
  Add(table.Faults());
  MonitorTables(model, table);
}

void Check::MonitorTables(const std::string& model, const ConfigParser& table) {
  if (MonitorBlockOf(table) == nullptr) {
    return;  // a fault of the model's own table
  }
  for (const std::string& version : ListMonitorVersions(folder_, model)) {
    const std::string path = MonitorTablePath(folder_, model, version);
    const auto with_monitor = WithMonitorTable(table, path, &report_.findings);
    const size_t count = with_monitor == nullptr
                             ? 0
                             : with_monitor->InTableOrder().size() - table.InTableOrder().size();
    report_.files.push_back({path, Counted(count, "variable")});
  }
}

void Check::FeatureTables() {
  TableFaults faults;
  for (const auto& [path, rows] : CheckFeatures(folder_, &faults)) {
    report_.files.push_back({path, Counted(rows, "model")});
  }
  Add(faults);
}

void Check::AuthTables(const std::vector<std::string>& models) {
  for (const std::string& file : folder_.FilesCalled(kAuthTableName)) {
    report_.files.push_back({file, ProtectionIn(file)});
  }
  for (const std::string& file : folder_.FilesCalled(kAuthKeysName)) {
    report_.files.push_back({file, KeysIn(file)});
  }
  TableFaults faults;
  for (const std::string& model : models) {
    TableFaults told_already;
    const ModelFeatures features = LoadFeatures(folder_, model, &told_already);
    CheckAuth(folder_, model, features.family, ConfigParser(LoadModelTable(folder_, model)),
              &faults);
    if (features.link == NetworkLink::kTls) {
      CheckTlsFiles(folder_, model, &faults);
    }
  }
  CheckAuthFiles(folder_, &faults);
  Add(faults);
}

}  // namespace

size_t TableReport::FaultCount() const {
  return static_cast<size_t>(std::count_if(
      findings.begin(), findings.end(),
      [](const TableFault& finding) { return finding.severity == TableFault::Severity::kFault; }));
}

TableReport CheckTables(const ConfigFolder& folder, const std::string& model) {
  TableReport report;
  const std::vector<std::string> models = ModelsToCheck(folder, model);
  report.models = models.size();
  for (const ConfigLayer& layer : folder.layers()) {
    if (layer.is_folder()) {
      report.folders.push_back(AbsolutePath(layer.path));
    }
  }
  Check check(folder, &report);
  for (const std::string& name : models) {
    check.VariableTables(name);
  }
  check.FeatureTables();
  check.AuthTables(models);
  CheckStrayFiles(folder, model, &report.findings);
  return report;
}

void PrintReport(const TableReport& report, std::ostream& out) {
  for (const std::string& folder : report.folders) {
    out << "Tables in " << folder << '\n';
  }
  for (const TableReport::File& file : report.files) {
    out << "  " << file.path << ": " << file.content << '\n';
  }
  for (const TableFault& finding : report.findings) {
    const bool is_warning = finding.severity == TableFault::Severity::kWarning;
    out << (is_warning ? "Warning: " : "") << finding.text << '\n';
  }
  const size_t faults = report.FaultCount();
  out << Counted(report.models, "model") << " checked: " << Counted(faults, "fault") << ", "
      << Counted(report.findings.size() - faults, "warning") << std::endl;
}
