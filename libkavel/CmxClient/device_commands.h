#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "CmxClient/command_sender.h"

namespace kavel::lidar {

/// The maintenance requests of the serial-attached models, one function each. Codes and payload
/// layouts are in docs/wire-formats.md ("Device commands"); all integers are big-endian.
///
/// Every function runs one exchange over the sender, on the caller's thread, and returns 0 or the
/// reason of its failure: the sender's own (-1 to -5, or the lidar's return code), kBadReply or
/// kBadArgument. Results are written only on success. kBadArgument stands for a text that is no
/// dotted IPv4 address or a number outside its range. A setter whose reply never came returns -2;
/// what that means is for the caller to judge.

inline constexpr uint8_t kCmdLiveness = 0x07;
inline constexpr uint8_t kCmdLivenessOld = 0x08;
inline constexpr uint8_t kCmdRestart = 0x10;
inline constexpr uint8_t kCmdFactoryReset = 0x25;
inline constexpr uint8_t kCmdGetBaudRate = 0x40;
inline constexpr uint8_t kCmdSetBaudRate = 0x41;
inline constexpr uint8_t kCmdGetDestination = 0x42;
inline constexpr uint8_t kCmdSetDestination = 0x43;
inline constexpr uint8_t kCmdGetNet = 0x44;
inline constexpr uint8_t kCmdSetNet = 0x45;
inline constexpr uint8_t kCmdSetReturnMode = 0x46;
inline constexpr uint8_t kCmdSetSpinRate = 0x47;
inline constexpr uint8_t kCmdSetStandby = 0x48;
inline constexpr uint8_t kCmdSetImuRange = 0x49;
inline constexpr uint8_t kCmdGetPblVersion = 0x4A;
inline constexpr uint8_t kCmdGetSerialNumber = 0x4B;
inline constexpr uint8_t kCmdGetPartNumber = 0x4C;
inline constexpr uint8_t kCmdGetVersions = 0x4D;
inline constexpr uint8_t kCmdGetFunctionSafety = 0x4E;
inline constexpr uint8_t kCmdGetStatus = 0x4F;
inline constexpr uint8_t kCmdGetPartition = 0x53;
inline constexpr uint8_t kCmdGetCalibration = 0x54;

/// Serial and part numbers have at most this many printable ASCII characters.
inline constexpr size_t kNumberTextSize = 32;
inline constexpr size_t kVersionTextSize = 16;
inline constexpr uint16_t kMaxVlanId = 4095;

/// Where the device sends its point cloud.
struct Destination {
  std::string ip;     ///< dotted IPv4
  uint16_t port = 0;  ///< UDP port
};

struct NetConfig {
  std::string ip;  ///< dotted IPv4, like mask and gateway
  std::string mask;
  std::string gateway;
  bool vlan = false;
  uint16_t vlan_id = 0;  ///< 0 to kMaxVlanId
};

/// `fpga_a` and `fpga_b` are the boards of the model: for Kiva the bottom and the top board, for
/// Lumo the junction box and nothing.
struct DeviceVersions {
  std::string firmware;
  std::string fpga_a;
  std::string fpga_b;
};

/// One safety function and what it reports.
struct SafetyState {
  uint8_t id = 0;
  uint8_t state = 0;
  uint16_t fault_code = 0;
};

struct DeviceStatus {
  uint8_t return_mode = 0;
  uint16_t spin_rate_rpm = 0;
  bool standby = false;
  uint8_t angular_range_index = 0;
  uint8_t accel_range_index = 0;
  uint32_t up_time_s = 0;
};

/// Asks quietly, see `CommandSender::QueryQuietly`, with one of the two liveness commands.
int32_t CheckAlive(CommandSender& sender, uint8_t liveness_cmd);
int32_t RestartDevice(CommandSender& sender);

int32_t GetBaudRate(CommandSender& sender, uint32_t* baud_rate_bps);
int32_t SetBaudRate(CommandSender& sender, uint32_t baud_rate_bps);
int32_t GetDestination(CommandSender& sender, Destination* destination);
int32_t SetDestination(CommandSender& sender, const Destination& destination);
int32_t GetNetConfig(CommandSender& sender, NetConfig* config);
int32_t SetNetConfig(CommandSender& sender, const NetConfig& config);
int32_t SetReturnMode(CommandSender& sender, uint8_t return_mode);
int32_t SetSpinRate(CommandSender& sender, uint16_t spin_rate_rpm);
int32_t SetStandby(CommandSender& sender, bool standby);
int32_t SetImuRange(CommandSender& sender, uint8_t angular_range_index, uint8_t accel_range_index);

/// The texts come without their zero padding. Serial and part number are handed out as received:
/// IsValidNumber tells whether one can be shown.
int32_t GetPblVersion(CommandSender& sender, std::string* version);
int32_t GetSerialNumber(CommandSender& sender, std::string* number);
int32_t GetPartNumber(CommandSender& sender, std::string* number);
int32_t GetVersions(CommandSender& sender, DeviceVersions* versions);
int32_t GetFunctionSafety(CommandSender& sender, std::vector<SafetyState>* states);
int32_t GetStatus(CommandSender& sender, DeviceStatus* status);
/// Which application partition runs: A (false) or B. Any other answer is kBadReply.
int32_t GetActivePartition(CommandSender& sender, bool* is_b);

/// The calibration as the device holds it, which is also the file; kBadReply unless it is whole and
/// its checksum right.
int32_t GetCalibration(CommandSender& sender, std::vector<uint8_t>* calibration);

/// 1 to kNumberTextSize printable ASCII characters.
bool IsValidNumber(const std::string& number);

}  // namespace kavel::lidar
