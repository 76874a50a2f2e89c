#include "session/lidar_model.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "auth/auth_rules.h"
#include "variables/feature_config.h"
#include "variables/monitor_tables.h"
#include "variables/table_rules.h"

namespace {

constexpr char kTableSuffix[] = ".csv";

std::string ModelNameOf(const std::string& table_path) {
  const std::string file = table_path.substr(table_path.rfind('/') + 1);
  const size_t stem = file.size() - std::min(file.size(), sizeof(kTableSuffix) - 1);
  return file.compare(stem, std::string::npos, kTableSuffix) == 0 ? file.substr(0, stem) : file;
}

}  // namespace

std::shared_ptr<LidarModel> LoadLidarModel(const std::string& table_path) {
  auto model = std::make_shared<LidarModel>();
  model->name = ModelNameOf(table_path);
  const ConfigFolder config = ConfigFolder::Of(table_path);
  model->config_folder = config.path();
  model->table = std::make_shared<ConfigParser>(LoadModelTable(table_path));
  model->faults = model->table->Faults();
  model->pages = PageModel(*model->table);
  static_cast<ModelFeatures&>(*model) = LoadFeatures(config, model->name, &model->faults);
  CheckAuth(config, model->name, model->family, *model->table, &model->faults);
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
