#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "CmxClient/stale_input.h"
#include "variables/config_folder.h"
#include "variables/model_traits.h"
#include "variables/table_fault.h"

// The tables "feature_config.csv" say per model what its variable table cannot. A row applies to
// the model whose name its "Model" cell holds; cells are compared without surrounding white space.

/// The feature tables of a folder, see ConfigFolder::FilesCalled.
inline constexpr char kFeatureTableName[] = "feature_config.csv";

/// What a network model's commands travel over.
enum class NetworkLink { kTcp, kTls };

/// What the tables say of one model; as it stands here, of a model without a row.
struct ModelFeatures {
  ConnectType connect_type = kNetworkLink;  ///< how it is reached
  SerialFamily family = SerialFamily::kNone;
  NetworkLink link = NetworkLink::kTcp;
  bool host_port_enabled = false;  ///< whether the field for the local port is offered
  /// how its client treats bytes that no command asked for
  kavel::lidar::StaleInput stale_input = kavel::lidar::StaleInput::kAlways;
};

/// What the feature tables of the folder say of the model. A row of a later table stands in the
/// place of the one before, all of it; of two rows in one table the first counts. Where a table
/// says nothing of connect type or family, the model's name tells, see TraitsOf.
/// *faults gets what is wrong with the tables as a whole and with this model's rows. A cell with a
/// fault counts as an empty one.
ModelFeatures LoadFeatures(const ConfigFolder& config, const std::string& model,
                           TableFaults* faults);

/// Everything that is wrong with the feature tables of the folder: every row, those of models that
/// have no table, and that none ships. Returns the tables that could be read, and the rows of each.
std::vector<std::pair<std::string, size_t>> CheckFeatures(const ConfigFolder& config,
                                                          TableFaults* faults);

/// Whether the host-port field is offered: the model's "EnableCmxClientHostPortUi" in this one
/// table is exactly "1". False when the file cannot be read or has no row of the model. Throws
/// std::runtime_error "Can't find a column named " and the name when one of the two columns is
/// missing.
bool IsHostPortUiEnabled(const std::string& table, const std::string& model);
