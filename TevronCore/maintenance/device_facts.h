#pragma once

#include <QVariantList>
#include <array>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "CmxClient/device_commands.h"
#include "variables/model_traits.h"

/// Shown for what has not been read.
inline constexpr char kUnreadFact[] = "xxxxxxxx";

/// The facts that one exchange brings.
enum class FactGroup { kSerialNumber, kPartNumber, kVersions, kPblVersion, kStatus, kCount };

/// What became of asking for them.
struct FactReading {
  std::optional<std::chrono::system_clock::time_point> read_at;  ///< the last time they were told
  std::string failure;  ///< why they were not told when last asked for; "" when they were
};

/// What a serial-attached lidar says about itself.
struct DeviceFacts {
  std::array<FactReading, static_cast<size_t>(FactGroup::kCount)> readings;
  std::string serial_number = kUnreadFact;
  std::string part_number = kUnreadFact;
  std::string pbl_version = kUnreadFact;  ///< of the primary boot loader
  kavel::lidar::DeviceVersions versions = {kUnreadFact, kUnreadFact, kUnreadFact};
  std::optional<kavel::lidar::DeviceStatus> status;
};

/// What runs on the lidar, in one text; of a Kiva with the versions of its boards. "" while unread.
std::string VersionText(const kavel::lidar::DeviceVersions& versions, SerialFamily family);

/// The facts as the screens show them, one map each: "name" and "value" are texts to show, "key"
/// names the fact to the program, "raw" is the number or text that the lidar told, and "state" is
/// "read", "stale" for what it told before but not when it was last asked, or "unread" for what it
/// has never told; then "value" is kUnreadFact and "raw" is missing. "read_at" is the local time of
/// the last reading, "failure" why there is none since; either may be "".
QVariantList InfoList(const DeviceFacts& facts, SerialFamily family);
QVariantList VersionList(const DeviceFacts& facts, SerialFamily family);
QVariantList SafetyList(const std::vector<kavel::lidar::SafetyState>& states);

/// IP address (text) and UDP port.
QVariantList AsList(const kavel::lidar::Destination& destination);
/// Address, mask and gateway (texts), VLAN flag (0 or 1) and VLAN identifier.
QVariantList AsList(const kavel::lidar::NetConfig& net);
