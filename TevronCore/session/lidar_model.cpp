#include "session/lidar_model.h"

#include <utility>

#include "auth/auth_rules.h"
#include "variables/feature_config.h"
#include "variables/monitor_tables.h"
#include "variables/table_rules.h"

std::shared_ptr<LidarModel> LoadLidarModel(const ConfigFolder& config, const std::string& name) {
  auto model = std::make_shared<LidarModel>();
  model->name = name;
  model->config = config;
  model->table = std::make_shared<ConfigParser>(LoadModelTable(config, name));
  model->faults = model->table->Faults();
  model->pages = PageModel(*model->table);
  static_cast<ModelFeatures&>(*model) = LoadFeatures(config, name, &model->faults);
  CheckAuth(config, name, model->family, *model->table, &model->faults);
  return model;
}

std::shared_ptr<LidarModel> WithMonitorVersion(const LidarModel& model, const std::string& version,
                                               TableFaults* faults) {
  std::shared_ptr<ConfigParser> table =
      WithMonitorTable(*model.table, MonitorTablePath(model.config, model.name, version), faults);
  if (table == nullptr) {
    return nullptr;
  }
  auto with_monitor = std::make_shared<LidarModel>(model);
  with_monitor->table = std::move(table);
  with_monitor->pages = PageModel(*with_monitor->table);
  with_monitor->monitor_version = version;
  return with_monitor;
}
