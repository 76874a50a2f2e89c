#pragma once

#include <QVariantList>
#include <optional>
#include <string>
#include <vector>

#include "CmxClient/device_commands.h"

/// Shown for what has not been read.
inline constexpr char kUnread[] = "xxxxxxxx";

/// Families of serial-attached models.
enum class SerialModelKind { kNone = 0, kLumo = 1, kKiva = 2 };

/// By the beginning of the model's name.
SerialModelKind SerialModelKindOf(const std::string& model);

/// What a serial-attached lidar says about itself.
struct DeviceFacts {
  std::string serial_number = kUnread;
  std::string part_number = kUnread;
  std::string pbl_version = kUnread;  ///< of the primary boot loader
  kavel::lidar::DeviceVersions versions = {kUnread, kUnread, kUnread};
  std::optional<kavel::lidar::DeviceStatus> status;
};

/// The facts as the screens show them: maps of "name" and "value" (texts).
QVariantList InfoList(const DeviceFacts& facts, SerialModelKind kind);
QVariantList VersionList(const DeviceFacts& facts, SerialModelKind kind);
QVariantList SafetyList(const std::vector<kavel::lidar::SafetyState>& states);
