#include "connection/connection_settings.h"

#include <QLockFile>
#include <QStandardPaths>
#include <functional>
#include <limits>

#include "connection/plain_ini.h"
#include "files/whole_file.h"

namespace {

constexpr char kIpKey[] = "device_ip_address";
constexpr char kCommandPortKey[] = "cmx_port";
constexpr char kRs485Key[] = "rs485_com";
constexpr char kRs232Key[] = "rs232_com";
constexpr char kBaudRateKey[] = "point_cloud_baudrate";
constexpr char kUdpPortKey[] = "udp_port";
constexpr char kDownloadFolderKey[] = "download_folder";

constexpr int kLockPatienceMs = 200;

QString HostPortKey(const std::string& model) {
  return QStringLiteral("cmx_client_host_port/%1").arg(QString::fromStdString(model));
}

/// The texts of the file; none when it cannot be used.
PlainIni TextsIn(const QString& path) {
  PlainIni texts;
  ReadPlainIni(path.toStdString(), &texts);
  return texts;
}

/// Reads, changes and writes it. Returns "", or why it stays as it was.
std::string Change(const QString& path, const std::function<void(PlainIni*)>& change) {
  // Two windows at once would lose what the other has written meanwhile; where no lock can be had
  // this is the lesser loss.
  QLockFile lock(path + ".lock");
  lock.tryLock(kLockPatienceMs);
  PlainIni texts;
  std::string reason = ReadPlainIni(path.toStdString(), &texts);
  if (reason.empty()) {
    change(&texts);
    reason = WritePlainIni(path.toStdString(), texts);
  }
  return reason.empty() ? "" : PathText(path.toStdString()) + ": " + reason;
}

void ReadText(const PlainIni& texts, const char* key, std::string* value) {
  *value = texts.value(key, QString::fromStdString(*value)).toStdString();
}

void ReadNumber(const PlainIni& texts, const char* key, int32_t max, int32_t* value) {
  bool is_number = false;
  const int number = texts.value(key).toInt(&is_number);
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
  PlainIni file;
  if (const std::string reason = ReadPlainIni(path.toStdString(), &file); !reason.empty()) {
    *fault = "The settings file " + PathText(path.toStdString()) + " is not used: " + reason + '.';
  }
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
  const PlainIni texts = TextsIn(path);
  const auto found = texts.find(HostPortKey(model));
  return found == texts.end() ? std::nullopt : std::make_optional(found->toStdString());
}

std::string SaveConnectionSettings(const QString& path, const ConnectionSettings& settings,
                                   const std::string& model) {
  return Change(path, [&](PlainIni* texts) {
    const auto set = [texts](const QString& key, const std::string& text) {
      texts->insert(key, QString::fromStdString(text));
    };
    set(kIpKey, settings.lidar_ip);
    set(kCommandPortKey, settings.command_port);
    set(kRs485Key, settings.serial_port_485);
    set(kRs232Key, settings.serial_port_232);
    set(kBaudRateKey, std::to_string(settings.point_cloud_baud_rate_bps));
    set(HostPortKey(model), settings.host_port);
  });
}

QString LoadKeptText(const QString& path, const QString& key) { return TextsIn(path).value(key); }

std::string SaveKeptText(const QString& path, const QString& key, const QString& text) {
  return Change(path, [&](PlainIni* texts) { texts->insert(key, text); });
}

QString LoadDownloadFolder(const QString& path) { return LoadKeptText(path, kDownloadFolderKey); }

std::string SaveDownloadFolder(const QString& path, const QString& folder) {
  return SaveKeptText(path, kDownloadFolderKey, folder);
}
