#pragma once

#include <memory>
#include <string>
#include <vector>

#include "CmxClient/cmx_client.h"
#include "variables/config_parser.h"
#include "variables/pages.h"

/// How a model is reached; the numbers are what the screens compare.
enum ConnectType : int {
  kNetworkLink = 0,  ///< commands over TCP
  kSerialPair = 1,   ///< requests over RS-485, answers and point cloud over a UART
  kSerialCmx = 2,    ///< commands over one RS-485 line
};

/// "Lumo" is a serial pair, "Lumo-CMX" and "Kiva-CMX" are reached over one line, every other model
/// over the network.
int ConnectTypeOf(const std::string& model);

/// One model as loaded: what stands in its tables, and the values of its variables. The shape never
/// changes after loading, so that an operation which holds the pointer can finish its work while
/// another model is being chosen. The values are guarded inside the table.
struct LidarModel {
  std::string name;
  std::string config_folder;  ///< holds the feature and authentication tables
  int connect_type = kNetworkLink;
  bool host_port_enabled = false;
  kavel::lidar::StaleInput stale_input = kavel::lidar::StaleInput::kAlways;
  const std::shared_ptr<ConfigParser> table = std::make_shared<ConfigParser>();
  PageModel pages;
  /// What is wrong with the tables, one sentence each.
  std::vector<std::string> faults;
};

/// Loads the model whose variable table is `table_path`; its name is the file's without ".csv".
/// Always gives a model: a table that cannot be used gives one without variables, and its faults
/// say why.
std::shared_ptr<LidarModel> LoadLidarModel(const std::string& table_path);
