#include <QFile>

#include "connection/connection_settings.h"
#include "fuzz/fuzz_targets.h"
#include "variables/host_port.h"

namespace {

constexpr char kModel[] = "Orca";

QByteArray ContentOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void CheckLoaded(const ConnectionSettings& settings) {
  Require(settings.udp_port >= 1 && settings.udp_port <= 65535, "a port is one");
  Require(settings.point_cloud_baud_rate_bps >= 1, "a rate is one");
  uint16_t port = 0;
  ParsePort(settings.command_port, &port);
  ParseHostPort(settings.host_port, &port, nullptr);
}

bool AreAlike(const ConnectionSettings& a, const ConnectionSettings& b) {
  return a.lidar_ip == b.lidar_ip && a.command_port == b.command_port &&
         a.serial_port_485 == b.serial_port_485 && a.serial_port_232 == b.serial_port_232 &&
         a.point_cloud_baud_rate_bps == b.point_cloud_baud_rate_bps && a.udp_port == b.udp_port;
}

void CheckSaving(const QString& path, const ConnectionSettings& settings) {
  const QString kept = LoadKeptText(path, "window/place");
  Require(SaveConnectionSettings(path, settings, kModel).empty(),
          "settings that were read are saved");
  std::string fault;
  Require(AreAlike(LoadConnectionSettings(path, &fault), settings) && fault.empty(),
          "settings are read as they were saved");
  Require(LoadHostPort(path, kModel) == settings.host_port, "the host port is kept");
  Require(LoadKeptText(path, "window/place") == kept, "what else was kept stays");
}

}  // namespace

void FuzzSettings(FuzzInput input) {
  const std::string content = input.RestText();
  const QString path = QString::fromStdString(FuzzFolder().Write("settings.ini", content));
  std::string fault;
  const ConnectionSettings settings = LoadConnectionSettings(path, &fault);
  CheckLoaded(settings);
  LoadHostPort(path, kModel);
  LoadDownloadFolder(path);
  if (fault.empty()) {
    CheckSaving(path, settings);
    const QString text = QString::fromStdString(content.substr(0, 64));
    Require(SaveKeptText(path, "log/text", text).empty(), "a text is kept");
    Require(LoadKeptText(path, "log/text") == text, "a text is read as it was kept");
  } else {
    Require(!SaveConnectionSettings(path, settings, kModel).empty() &&
                ContentOf(path) == QByteArray::fromStdString(content),
            "a file that cannot be used is left as it was");
  }
  QFile::remove(path);
}
