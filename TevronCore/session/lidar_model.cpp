#include "session/lidar_model.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "variables/feature_config.h"
#include "variables/monitor_tables.h"
#include "variables/table_rules.h"

namespace {

constexpr char kTableSuffix[] = ".csv";

/// The folder of a path, without the "/" at its end; "." for a bare file name.
std::string FolderOf(const std::string& path) {
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, slash);
}

std::string ModelNameOf(const std::string& table_path) {
  const std::string file = table_path.substr(table_path.rfind('/') + 1);
  const size_t stem = file.size() - std::min(file.size(), sizeof(kTableSuffix) - 1);
  return file.compare(stem, std::string::npos, kTableSuffix) == 0 ? file.substr(0, stem) : file;
}

}  // namespace

std::shared_ptr<LidarModel> LoadLidarModel(const std::string& table_path) {
  auto model = std::make_shared<LidarModel>();
  model->name = ModelNameOf(table_path);
  model->config_folder = FolderOf(FolderOf(table_path));
  const ModelTraits traits = TraitsOf(model->name);
  model->connect_type = traits.connect;
  model->family = traits.family;
  model->table = std::make_shared<ConfigParser>(LoadModelTable(table_path));
  model->faults = model->table->Faults();
  model->pages = PageModel(*model->table);

  const std::string features = model->config_folder + "/feature_config.csv";
  try {
    model->host_port_enabled = IsHostPortUiEnabled(features, model->name);
  } catch (const std::exception& e) {
    model->faults.push_back({0, features + ": " + e.what()});
  }
  model->stale_input = StaleInputFor(features, model->name);
  return model;
}

std::shared_ptr<LidarModel> WithMonitorVersion(const LidarModel& model, const std::string& version,
                                               TableFaults* faults) {
  std::shared_ptr<ConfigParser> table = WithMonitorTable(*model.table, version, faults);
  if (table == nullptr) {
    return nullptr;
  }
  auto with_monitor = std::make_shared<LidarModel>(model);
  with_monitor->table = std::move(table);
  with_monitor->pages = PageModel(*with_monitor->table);
  with_monitor->monitor_version = version;
  return with_monitor;
}
