#pragma once

#include <QString>
#include <cstdint>
#include <optional>
#include <string>

#include "variables/model_traits.h"

/// How a lidar is reached: what the user last entered. A connect attempt works on its own copy.
struct ConnectionSettings {
  std::string lidar_ip = "192.168.1.201";  ///< empty: learned from the lidar's UDP packets
  std::string command_port = "9347";       ///< text as entered; converted when connecting
  std::string serial_port_485 = "/dev/ttyUSB0";
  std::string serial_port_232 = "/dev/ttyUSB1";
  int32_t point_cloud_baud_rate_bps = 3000000;
  int32_t command_baud_rate_bps = 115200;  ///< of the RS-485 line; never entered, never stored
  int32_t udp_port = 2368;                 ///< where point-cloud packets arrive
  std::string host_port = "ANY";           ///< local port of the command connection, or "ANY"
  /// The one certificate that a lidar may show over TLS, see kavel::lidar::NormalSha256; "": those
  /// that are trusted. Never stored.
  std::string tls_pin = {};
};

/// Where they reach a lidar of this kind, for the user: "10.0.0.7, port 9347", or the serial ports.
std::string PlaceText(const ConnectionSettings& settings, ConnectType connect_type);

/// "RecvSettings.ini" in the tool's folder among the user's documents.
QString SettingsFilePath();

/// The settings of the file. A key that is absent, no plain text or no possible number leaves its
/// default; a file that cannot be used leaves all of them, and *fault says why (it is left alone
/// otherwise). The host port is not among them: it belongs to a model.
ConnectionSettings LoadConnectionSettings(const QString& path, std::string* fault);

/// The host port last used with `model`, or nothing.
std::optional<std::string> LoadHostPort(const QString& path, const std::string& model);

/// Writes the settings, the host port under the key of `model`, and creates file and folder where
/// they are missing. The UDP port is read but deliberately never written: it is set up once, by
/// hand. Returns "", or a sentence that names the file and why it could not be written; the file is
/// then as it was.
std::string SaveConnectionSettings(const QString& path, const ConnectionSettings& settings,
                                   const std::string& model);

/// A text that is kept across starts beside the settings, under "name" or "group/name"; empty when
/// there is none.
QString LoadKeptText(const QString& path, const QString& key);

/// Remembers it, as SaveConnectionSettings does the settings; the other keys of the file stay.
std::string SaveKeptText(const QString& path, const QString& key, const QString& text);

/// The folder that downloads were last saved to; empty when there was none.
QString LoadDownloadFolder(const QString& path);
std::string SaveDownloadFolder(const QString& path, const QString& folder);
