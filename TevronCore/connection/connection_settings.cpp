#include "connection/connection_settings.h"

#include <QSettings>
#include <QStandardPaths>
#include <limits>
#include <memory>

#include "connection/plain_ini.h"

namespace {

constexpr char kIpKey[] = "device_ip_address";
constexpr char kCommandPortKey[] = "cmx_port";
constexpr char kRs485Key[] = "rs485_com";
constexpr char kRs232Key[] = "rs232_com";
constexpr char kBaudRateKey[] = "point_cloud_baudrate";
constexpr char kUdpPortKey[] = "udp_port";
constexpr char kDownloadFolderKey[] = "download_folder";

QString HostPortKey(const std::string& model) {
  return QStringLiteral("cmx_client_host_port/%1").arg(QString::fromStdString(model));
}

/// The file, or null when it cannot be used.
std::unique_ptr<QSettings> OpenSettings(const QString& path) {
  if (!IsPlainIniFile(path)) {
    return nullptr;
  }
  auto file = std::make_unique<QSettings>(path, PlainIniFormat());
  return file->status() == QSettings::NoError ? std::move(file) : nullptr;
}

void ReadText(const QSettings& file, const char* key, std::string* value) {
  if (file.contains(key)) {
    *value = file.value(key).toString().toStdString();
  }
}

void ReadNumber(const QSettings& file, const char* key, int32_t max, int32_t* value) {
  bool is_number = false;
  const int number = file.value(key).toInt(&is_number);
  if (is_number && number >= 1 && number <= max) {
    *value = number;
  }
}

}  // namespace

std::string PlaceText(const ConnectionSettings& settings, ConnectType connect_type) {
  switch (connect_type) {
    case kSerialPair:
      return settings.serial_port_485 + " and " + settings.serial_port_232;
    case kSerialCmx:
      return settings.serial_port_485;
    default:
      return (settings.lidar_ip.empty() ? "any address" : settings.lidar_ip) + ", port " +
             settings.command_port;
  }
}

QString SettingsFilePath() {
  return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) +
         QStringLiteral("/CorvanViewDataFiles/RecvSettings.ini");
}

ConnectionSettings LoadConnectionSettings(const QString& path, std::string* fault) {
  const std::unique_ptr<QSettings> opened = OpenSettings(path);
  if (opened == nullptr) {
    *fault = "The settings file " + path.toStdString() +
             " is not used: it is no regular file of at most 64 KiB that holds settings.";
    return {};
  }
  const QSettings& file = *opened;
  ConnectionSettings settings;
  ReadText(file, kIpKey, &settings.lidar_ip);
  ReadText(file, kCommandPortKey, &settings.command_port);
  ReadText(file, kRs485Key, &settings.serial_port_485);
  ReadText(file, kRs232Key, &settings.serial_port_232);
  ReadNumber(file, kBaudRateKey, std::numeric_limits<int32_t>::max(),
             &settings.point_cloud_baud_rate_bps);
  ReadNumber(file, kUdpPortKey, std::numeric_limits<uint16_t>::max(), &settings.udp_port);
  return settings;
}

std::optional<std::string> LoadHostPort(const QString& path, const std::string& model) {
  const std::unique_ptr<QSettings> file = OpenSettings(path);
  const QString key = HostPortKey(model);
  if (file == nullptr || !file->contains(key)) {
    return std::nullopt;
  }
  return file->value(key).toString().toStdString();
}

bool SaveConnectionSettings(const QString& path, const ConnectionSettings& settings,
                            const std::string& model) {
  const std::unique_ptr<QSettings> opened = OpenSettings(path);
  if (opened == nullptr) {
    return false;
  }
  QSettings& file = *opened;
  file.setValue(kIpKey, QString::fromStdString(settings.lidar_ip));
  file.setValue(kCommandPortKey, QString::fromStdString(settings.command_port));
  file.setValue(kRs485Key, QString::fromStdString(settings.serial_port_485));
  file.setValue(kRs232Key, QString::fromStdString(settings.serial_port_232));
  file.setValue(kBaudRateKey, settings.point_cloud_baud_rate_bps);
  file.setValue(HostPortKey(model), QString::fromStdString(settings.host_port));
  file.sync();
  return file.status() == QSettings::NoError;
}

QString LoadKeptText(const QString& path, const QString& key) {
  const std::unique_ptr<QSettings> file = OpenSettings(path);
  return file == nullptr ? QString() : file->value(key).toString();
}

bool SaveKeptText(const QString& path, const QString& key, const QString& text) {
  const std::unique_ptr<QSettings> file = OpenSettings(path);
  if (file == nullptr) {
    return false;
  }
  file->setValue(key, text);
  file->sync();
  return file->status() == QSettings::NoError;
}

QString LoadDownloadFolder(const QString& path) { return LoadKeptText(path, kDownloadFolderKey); }

bool SaveDownloadFolder(const QString& path, const QString& folder) {
  return SaveKeptText(path, kDownloadFolderKey, folder);
}
