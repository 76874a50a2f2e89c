#pragma once

#include <QString>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "settings_files/settings_file.h"
#include "support_bundle/clean_text.h"
#include "support_bundle/device_log.h"

/// One file of a support bundle.
struct BundleEntry {
  std::string name;
  std::string what;      ///< what it is, in words for the user
  std::string left_out;  ///< why it is not in the bundle; "" for one that is
  std::string bytes;     ///< exactly what is written

  size_t size() const { return bytes.size(); }
};

/// What a bundle is made of.
struct BundleSources {
  ConfigFolder config;
  std::optional<SettingsFile> settings;  ///< of the connected lidar
  std::string no_settings;               ///< why there are none
  std::string screen_log = {};           ///< the lines that the window shows; "" without a window
  std::string last_fault = {};           ///< "": the last one of the device log
  QString device_log = DeviceLogPath();
  PersonalNames names = PersonalNames::OfThisComputer();
};

/// So much of a log is taken, the newest lines.
inline constexpr size_t kMaxBundledLog = size_t{1024} * 1024;

/// The ending of a bundle's name.
inline constexpr char kBundleSuffix[] = ".zip";

/// What a bundle made of this holds: what the one who helps needs, and neither a key, nor the name
/// of the user or the computer. Reads the log and the tables, and writes nothing. Any thread.
std::vector<BundleEntry> ListBundle(const BundleSources& sources);

/// Writes the entries that are not left out as a .zip, aside first, and gives it its name when it
/// is whole. Returns "", or why it could not be written; what the name stood for is then still
/// there.
std::string WriteBundle(const QString& path, const std::vector<BundleEntry>& entries);
