#pragma once

#include <QVariantList>
#include <optional>
#include <string>
#include <vector>

#include "CmxClient/device_commands.h"
#include "variables/model_traits.h"

/// Shown for what has not been read.
inline constexpr char kUnread[] = "xxxxxxxx";

/// What a serial-attached lidar says about itself.
struct DeviceFacts {
  std::string serial_number = kUnread;
  std::string part_number = kUnread;
  std::string pbl_version = kUnread;  ///< of the primary boot loader
  kavel::lidar::DeviceVersions versions = {kUnread, kUnread, kUnread};
  std::optional<kavel::lidar::DeviceStatus> status;
};

/// The facts as the screens show them: maps of "name" and "value" (texts).
QVariantList InfoList(const DeviceFacts& facts, SerialFamily family);
QVariantList VersionList(const DeviceFacts& facts, SerialFamily family);
QVariantList SafetyList(const std::vector<kavel::lidar::SafetyState>& states);
