#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "session/lidar_model.h"

/// A model, and its monitor tables, one model a hardware version.
struct DissectedModel {
  std::shared_ptr<const LidarModel> model;
  std::vector<std::shared_ptr<const LidarModel>> monitors;
};

/// Writes what the dissector has to know of the models as a Lua table named TABLES: commands by
/// code, their payloads cut into variables, choices, units, and which commands are protected.
/// Nothing of it is a value of a lidar or a key. `chosen` is the model to begin with, one of
/// `models`. The same tables give the same text.
void WriteDissectorTables(const std::vector<DissectedModel>& models, const std::string& chosen,
                          std::ostream& out);
