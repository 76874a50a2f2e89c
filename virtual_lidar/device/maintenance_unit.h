#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "variables/model_traits.h"
#include "wire/message.h"

/// What the maintenance commands 0x40 to 0x4F and the mode switch of the serial models read and
/// write. The layouts are in docs/wire-formats.md ("Device commands").
struct MaintenanceState {
  uint32_t baud_rate_bps = 3125000;                                   ///< of the point cloud's line
  std::vector<uint8_t> destination = {192, 168, 1, 100, 0x09, 0x40};  ///< IP, UDP port 2368
  /// IP, mask, gateway, VLAN flag, VLAN id.
  std::vector<uint8_t> net = {192, 168, 1, 201, 255, 255, 255, 0, 192, 168, 1, 1, 0, 0, 0};
  uint8_t return_mode = 0;
  uint16_t spin_rate_rpm = 600;
  uint8_t standby = 0;
  uint8_t angular_range_index = 2;
  uint8_t accel_range_index = 1;
  uint8_t mode = 0;  ///< of the mode switch: 0 is work
  uint8_t sub_mode = 0;
};

/// Carries the maintenance commands out.
class MaintenanceUnit {
 public:
  /// `family` kNone gives a device that knows none of these commands.
  explicit MaintenanceUnit(SerialFamily family) : family_(family) {}

  /// What the device answers when it is asked who it is.
  void SetNumbers(std::string serial_number, std::string part_number);

  /// Numbers of the versions that run: application and, for a Kiva, both gate arrays.
  void SetVersions(std::string firmware, std::string base_fpga, std::string top_fpga);

  /// Answers a maintenance command or a mode switch; nothing for any other.
  std::optional<DeviceReply> Answer(const DeviceRequest& request, uint32_t up_time_s);

  /// Back to work mode, as after power-up; settings stay.
  void Restart();
  /// Back to the settings of the factory.
  void Reset() { state_ = MaintenanceState(); }

  /// The read commands whose answers tell all settings.
  static constexpr uint8_t kSeedCommands[] = {0x40, 0x42, 0x44, 0x4F};
  /// Takes settings over from the answer to one of kSeedCommands; one of another length is ignored.
  void Seed(uint8_t command, const std::vector<uint8_t>& answer);
  /// The answer to a read command; nothing when the command is none, or the model knows none.
  std::optional<std::vector<uint8_t>> Read(uint8_t command, uint32_t up_time_s) const;

  bool enabled() const { return family_ != SerialFamily::kNone; }
  /// The mode in which firmware may be streamed.
  bool in_upgrade_mode() const;
  const MaintenanceState& state() const { return state_; }

 private:
  /// A return code; nothing when the command is no setter.
  std::optional<uint8_t> Write(uint8_t command, const std::vector<uint8_t>& payload);
  uint8_t WriteNet(const std::vector<uint8_t>& payload);
  std::vector<uint8_t> Versions() const;
  DeviceReply SwitchMode(const DeviceRequest& request);

  SerialFamily family_;
  std::string serial_number_;
  std::string part_number_;
  std::string firmware_;
  std::string base_fpga_;
  std::string top_fpga_;
  MaintenanceState state_;
};
