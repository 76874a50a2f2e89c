#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "device/log_store.h"
#include "faults/fault_modes.h"
#include "server/device_server.h"
#include "variables/feature_config.h"

/// What the command line asks for.
struct Options {
  std::string model = "Orca";
  ConfigFolder config = ConfigFolder::OfProgram();  ///< of the tables and keys
  ModelFeatures features;                           ///< of the model
  TableFaults feature_faults;
  std::string hardware;  ///< version of the monitor page; empty: the first that there is
  uint32_t seed = 1;     ///< of what the device measures of itself; 0: it stands still
  bool auth_required = true;
  std::vector<FaultOrder> faults;
  std::string fault_file;  ///< of more of them, read again on SIGHUP; empty: none
  std::vector<std::pair<std::string, std::string>> presets;  ///< variable and text
  ServerSetup server;
  bool check_tables = false;
  std::string checked_model;  ///< whose tables; empty: of every model
  bool list_models = false;
  bool make_firmware = false;
  std::string firmware_version;
  std::string firmware_file;
  size_t firmware_size = size_t{256} * 1024;  ///< of each image, in bytes
  std::string tls_folder;                     ///< where to make files for TLS; empty: no
  uint32_t log_size = LogStore::kUsualSize;
};

/// Reads the command line. Prints help or the fault in it itself.
/// Returns nothing when the process is to end now, with *exit_code.
std::optional<Options> ParseOptions(int argc, char** argv, int* exit_code);
