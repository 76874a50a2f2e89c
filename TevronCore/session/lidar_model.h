#pragma once

#include <memory>
#include <string>
#include <vector>

#include "variables/config_folder.h"
#include "variables/config_parser.h"
#include "variables/feature_config.h"
#include "variables/pages.h"

/// One model as loaded: what stands in its tables, and the values of its variables. The shape never
/// changes after loading, so that an operation which holds the pointer can finish its work while
/// another model is being chosen. The values are guarded inside the table.
struct LidarModel : ModelFeatures {
  std::string name;
  ConfigFolder config{"./Config"};  ///< where all that is said of the model was looked for
  std::shared_ptr<ConfigParser> table = std::make_shared<ConfigParser>();
  PageModel pages;
  std::string monitor_version;  ///< hardware version of the monitor page; empty: none is chosen
  TableFaults faults;           ///< What is wrong with the tables.
};

/// Always gives a model: a table that cannot be used gives one without variables, and its faults
/// say why.
std::shared_ptr<LidarModel> LoadLidarModel(const ConfigFolder& config, const std::string& name);

/// `model` with the monitor table of `version` on its monitor page, and the values and edits that
/// it has now. Null when there is no such table or it cannot be used. *faults gets what is wrong
/// with it, see WithMonitorTable.
std::shared_ptr<LidarModel> WithMonitorVersion(const LidarModel& model, const std::string& version,
                                               TableFaults* faults);
