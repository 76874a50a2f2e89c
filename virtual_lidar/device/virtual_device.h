#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "device/auth_guard.h"
#include "device/firmware_unit.h"
#include "device/log_store.h"
#include "device/maintenance_unit.h"
#include "device/variable_memory.h"
#include "faults/fault_modes.h"
#include "variables/config_parser.h"
#include "wire/message.h"

/// What kind of device a virtual lidar is.
struct DeviceProfile {
  std::string model;
  SerialFamily family = SerialFamily::kNone;  ///< kNone: it knows no maintenance commands
  AuthConfig auth;
  AuthKeys auth_keys;
  bool auth_required = true;  ///< what the probe says, where the model authenticates at all
  std::string hardware;       ///< version that the monitor page tells; empty: the table's
  uint32_t seed = 0;          ///< of what it measures; 0: it stands still
  uint32_t log_size = LogStore::kUsualSize;  ///< bytes of each log
};

/// A lidar in software: takes requests, answers them, and remembers what was written. Knows nothing
/// of sockets and frames. Used on one thread.
class VirtualDevice {
 public:
  using Clock = std::function<std::chrono::steady_clock::time_point()>;

  /// `table` is loaded, and shared because the memory points into it.
  /// Throws std::invalid_argument when the authentication table asks for the impossible.
  VirtualDevice(std::shared_ptr<const ConfigParser> table, DeviceProfile profile,
                Clock clock = std::chrono::steady_clock::now);

  /// Carries one request out, the faults that strike before or during that included.
  /// `what` gets a few words for the log: what the request was.
  DeviceReply Answer(const DeviceRequest& request, AuthSession* session, FaultBox* faults,
                     std::string* what);

  /// Whole seconds since power-up or the last restart.
  uint32_t UpTimeSeconds() const;

  /// True once after anything was written or reset.
  bool TakeChanged();

  /// Sets a variable, by name or id, as if it had been written before.
  /// Returns false with a sentence in *error when there is none or the text does not fit.
  bool Preset(const std::string& name, const std::string& text, std::string* error);

  const std::string& model() const { return model_; }
  const VariableMemory& memory() const { return memory_; }
  const MaintenanceUnit& maintenance() const { return maintenance_; }
  const FirmwareUnit& firmware() const { return firmware_; }

 private:
  DeviceReply CarryOut(const DeviceRequest& request, FaultBox* faults, std::string* what);
  bool RunBuiltIn(const DeviceRequest& request, DeviceReply* reply, std::string* what);
  bool RunTableCommand(const DeviceRequest& request, DeviceReply* reply, std::string* what);
  void SeedMaintenance();
  void MirrorMaintenance();
  void SeedFirmware(bool both);
  void ShowVersions();
  void PowerUp();
  void Restart();
  void Reset();

  std::shared_ptr<const ConfigParser> table_;
  std::string model_;
  Clock clock_;
  std::chrono::steady_clock::time_point start_;
  VariableMemory memory_;
  MaintenanceUnit maintenance_;
  FirmwareUnit firmware_;
  LogStore logs_;
  AuthGuard guard_;
  bool changed_ = false;
};
