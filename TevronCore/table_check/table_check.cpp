#include "table_check/table_check.h"

#include <algorithm>
#include <exception>
#include <stdexcept>

#include "auth/auth_algorithm.h"
#include "auth/auth_config.h"
#include "auth/auth_keys.h"
#include "variables/config_parser.h"
#include "variables/csv_table.h"
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

/// One check of one folder.
class Check {
 public:
  Check(const ConfigFolder& folder, TableReport* report) : folder_(folder), report_(*report) {}

  void VariableTables(const std::string& model);
  void FeatureTables();
  void AuthTables(const std::vector<std::string>& models);

 private:
  void MonitorTables(const ConfigParser& table);
  void ModelColumn(const std::string& path, const std::vector<std::string>& models);
  void Add(const TableFaults& faults) {
    report_.findings.insert(report_.findings.end(), faults.begin(), faults.end());
  }

  const ConfigFolder& folder_;
  TableReport& report_;
};

void Check::VariableTables(const std::string& model) {
  const ConfigParser table(LoadModelTable(folder_.TableOf(model)));
  report_.files.push_back({table.path(), Counted(table.InTableOrder().size(), "variable") + ", " +
                                             Counted(PageModel(table).pages().size(), "page") +
                                             ", " +
                                             Counted(table.Directives().size(), "directive")});
  Add(table.Faults());
  MonitorTables(table);
}

void Check::MonitorTables(const ConfigParser& table) {
  for (const std::string& version : ListMonitorVersions(table.path())) {
    const auto with_monitor = WithMonitorTable(table, version, &report_.findings);
    const size_t count = with_monitor == nullptr
                             ? 0
                             : with_monitor->InTableOrder().size() - table.InTableOrder().size();
    report_.files.push_back({MonitorTablePath(table.path(), version), Counted(count, "variable")});
  }
}

void Check::FeatureTables() {
  for (const auto& [path, rows] : CheckFeatures(folder_, &report_.findings)) {
    report_.files.push_back({path, Counted(rows, "model")});
  }
}

// The rows of a table that is looked up by model: broken rows, and models without a table.
void Check::ModelColumn(const std::string& path, const std::vector<std::string>& models) {
  const FileFaults faults(path, &report_.findings);
  const CsvTable table(path);
  report_.files.push_back({path, Counted(table.row_count(), "model")});
  for (const CsvFault& fault : table.faults()) {
    faults.Fault(fault.line, fault.reason);
  }
  const size_t column = table.header().Column("Model");
  for (size_t row = 0; row < table.row_count(); ++row) {
    const std::string model(table.Cell(row, column));
    if (std::find(models.begin(), models.end(), model) == models.end()) {
      faults.Fault(table.LineOf(row), "model \"" + model + "\" has no variable table");
    }
  }
}

// The reason why a model cannot authenticate; empty when it can.
std::string AuthFault(const AuthConfig& config, const AuthKeys& keys) {
  const std::string algorithm = std::to_string(config.algorithm_id);
  if (config.algorithm_id < kMaskwordOne || config.algorithm_id > kAes128Cbc) {
    return "there is no algorithm " + algorithm;
  }
  const bool mix = !keys.mix_c1.empty() && !keys.mix_c2.empty();
  const bool has_keys[] = {mix && !keys.maskword_1.empty(), mix && !keys.maskword_2.empty(),
                           !keys.aes256_key.empty(), !keys.aes128_key.empty()};
  if (has_keys[config.algorithm_id - 1]) {
    return "";
  }
  return "the keys of algorithm " + algorithm + " are missing or malformed";
}

void Check::AuthTables(const std::vector<std::string>& models) {
  const std::string path = folder_.path() + "/auth_config.csv";
  const FileFaults faults(path, &report_.findings);
  const AuthKeys keys = LoadAuthKeys(folder_.path() + "/auth_keys.ini");
  try {
    ModelColumn(path, folder_.Models());
    for (const std::string& model : models) {
      const AuthConfig config = LoadAuthConfig(path, model);
      const std::string fault = config.enabled ? AuthFault(config, keys) : "";
      if (!fault.empty()) {
        faults.Fault(0, "model \"" + model + "\": " + fault);
      }
    }
  } catch (const AuthConfigError& error) {
    report_.findings.push_back({0, error.place() + ": " + error.what()});
  } catch (const std::exception& error) {
    faults.Fault(0, error.what());
  }
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
  report.folders.push_back(AbsolutePath(folder.path()));
  if (folder.has_site()) {
    report.folders.push_back(AbsolutePath(folder.site_path()));
  }
  Check check(folder, &report);
  for (const std::string& name : models) {
    check.VariableTables(name);
  }
  check.FeatureTables();
  check.AuthTables(models);
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
