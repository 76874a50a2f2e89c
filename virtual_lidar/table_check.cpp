#include "table_check.h"

#include <exception>
#include <initializer_list>
#include <set>
#include <string_view>
#include <vector>

#include "auth/auth_algorithm.h"
#include "auth/auth_config.h"
#include "auth/auth_keys.h"
#include "device/variable_memory.h"
#include "variables/config_parser.h"
#include "variables/csv_table.h"
#include "variables/feature_config.h"
#include "variables/log_variables.h"
#include "variables/model_list.h"
#include "variables/monitor_tables.h"

namespace {

std::string Line(std::initializer_list<std::string_view> parts) {
  std::string line;
  for (const std::string_view part : parts) {
    line += part;
  }
  return line;
}

// A file that cannot be read is named in the text of the failure already.
std::string InFile(const std::string& path, const std::string& text) {
  return text.rfind(path, 0) == 0 ? text : Line({path, ": ", text});
}

void AddDefaults(const VariableMemory& memory, TableFaults* faults) {
  for (const std::string& fault : memory.faults()) {
    faults->push_back({0, fault});
  }
}

void CheckMonitorTables(const ConfigParser& model, TableFaults* faults) {
  for (const std::string& version : ListMonitorVersions(model.path())) {
    WithMonitorTable(model, version, faults);
    ConfigParser alone;
    try {
      alone.ExtractConfigInfo(MonitorTablePath(model.path(), version));
    } catch (const std::exception&) {
      continue;  // told already
    }
    const VariableMemory memory(alone);
    AddDefaults(memory, faults);
  }
}

void CheckVariableTable(const std::string& path, TableFaults* faults) {
  ConfigParser parser;
  try {
    parser.ExtractConfigInfo(path);
  } catch (const std::exception& error) {
    faults->push_back({0, InFile(path, error.what())});
    return;
  }
  faults->insert(faults->end(), parser.Faults().begin(), parser.Faults().end());
  OfferedLogs(parser, faults);
  const VariableMemory memory(parser);
  AddDefaults(memory, faults);
  CheckMonitorTables(parser, faults);
}

// The rows of a table that is looked up by model: broken rows, and models without a table.
std::vector<std::string> CheckModelColumn(const std::string& path,
                                          const std::set<std::string>& models,
                                          TableFaults* faults) {
  std::vector<std::string> named;
  const CsvTable table(path);
  for (const CsvFault& fault : table.faults()) {
    faults->push_back(
        {fault.line, Line({path, ", line ", std::to_string(fault.line), ": ", fault.reason})});
  }
  const size_t column = table.header().Column("Model");
  for (size_t row = 0; row < table.row_count(); ++row) {
    const std::string model(table.Cell(row, column));
    named.push_back(model);
    if (models.count(model) == 0) {
      faults->push_back(
          {table.LineOf(row), Line({path, ", line ", std::to_string(table.LineOf(row)),
                                    ": model \"", model, "\" has no variable table"})});
    }
  }
  return named;
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

// Runs a check whose failure as a whole is one more fault.
template <typename Check>
void Guarded(const std::string& path, TableFaults* faults, Check check) {
  try {
    check();
  } catch (const AuthConfigError& error) {
    faults->push_back({0, error.place() + ": " + error.what()});
  } catch (const std::exception& error) {
    faults->push_back({0, InFile(path, error.what())});
  }
}

}  // namespace

int CheckTables(const std::string& config_folder, std::ostream& out) {
  TableFaults faults;
  const std::string tables = config_folder + "/varID";
  std::set<std::string> models;
  for (const std::string& model : ListModels(tables)) {
    models.insert(model);
    CheckVariableTable(Line({tables, "/", model, ".csv"}), &faults);
  }
  if (models.empty()) {
    faults.push_back({0, tables + ": no variable tables here"});
  }

  const std::string feature = config_folder + "/feature_config.csv";
  Guarded(feature, &faults, [&] {
    CheckModelColumn(feature, models, &faults);
    for (const std::string& model : models) {
      IsHostPortUiEnabled(feature, model);
    }
  });
  const std::string auth = config_folder + "/auth_config.csv";
  std::vector<std::string> authenticating;
  Guarded(auth, &faults, [&] { authenticating = CheckModelColumn(auth, models, &faults); });
  const AuthKeys keys = LoadAuthKeys(config_folder + "/auth_keys.ini");
  for (const std::string& model : authenticating) {
    Guarded(auth, &faults, [&] {
      const AuthConfig config = LoadAuthConfig(auth, model);
      const std::string fault = config.enabled ? AuthFault(config, keys) : "";
      if (!fault.empty()) {
        faults.push_back({0, Line({auth, ": model \"", model, "\": ", fault})});
      }
    });
  }

  for (const TableFault& fault : faults) {
    out << fault.text << '\n';
  }
  out << models.size() << " variable tables checked, " << faults.size()
      << (faults.size() == 1 ? " fault" : " faults") << std::endl;
  return static_cast<int>(faults.size());
}
