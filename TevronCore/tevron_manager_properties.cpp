// The properties: what the screens bind to. Setters announce a change, never an equal value.

#include <limits>
#include <string>
#include <utility>

#include "tevron_manager.h"
#include "tevron_manager_parts.h"

namespace {

/// Takes `text` when it is a number in [1, max]; false leaves the value.
bool TakeNumber(const QString& text, int max, int32_t* value) {
  bool is_number = false;
  const int number = text.trimmed().toInt(&is_number, 10);
  if (!is_number || number < 1 || number > max) {
    return false;
  }
  *value = number;
  return true;
}

}  // namespace

void TevronManager::setErrorMsg(const QString& str) { ShowError(str, {}); }

void TevronManager::ShowError(const QString& text, const QString& remedy) {
  parts_->error_message = text;
  parts_->error_remedy = remedy;
  if (!text.isEmpty()) {
    emit errorMessageChanged();
  }
}

void TevronManager::setSuccessMsg(const QString& str) {
  parts_->success_message = str;
  if (!str.isEmpty()) {
    emit successMessageChanged();
  }
}

QString TevronManager::errorMessage() const { return parts_->error_message; }
const QString& TevronManager::ErrorRemedy() const { return parts_->error_remedy; }
QString TevronManager::successMessage() const { return parts_->success_message; }

QVariantList TevronManager::myMap() const { return parts_->pages.map(); }
QVariantList TevronManager::level1List() const { return parts_->pages.names(); }
QVariantList TevronManager::level2List() const { return parts_->pages.rows(); }
QVariantList TevronManager::fovList() const { return parts_->pages.fov_texts(); }

QVariantList TevronManager::lidarModelList() const {
  QVariantList models;
  for (const std::string& model : parts_->config.Models()) {
    models.append(QString::fromStdString(model));
  }
  return models;
}

QString TevronManager::getPVNowName() { return QString::fromStdString(parts_->product_variant); }

bool TevronManager::isConnected() const { return parts_->session.state().connected; }
int TevronManager::connectType() const { return parts_->model()->connect_type; }
bool TevronManager::isUpgrading() const { return parts_->session.state().upgrading; }
int TevronManager::upgradeProgress() const { return parts_->upgrade.progress_kib(); }
int TevronManager::upgradeProgressTotalLen() const { return parts_->upgrade.total_kib(); }
bool TevronManager::isDownloadLog() const { return parts_->session.state().downloading; }

void TevronManager::setIsDownloadLog(bool running) {
  if (parts_->session.state().downloading.exchange(running) != running) {
    emit isDownloadLogChanged();
  }
}

int TevronManager::commandLogCnt() const { return parts_->byte_flow->CommandCount(); }
QVariantList TevronManager::sendCommandHistory() const { return parts_->console.History(); }

QVariantList TevronManager::lumoLidarInfo() const {
  return InfoList(parts_->session.facts(), parts_->model()->family);
}
QVariantList TevronManager::lumoLidarVersionInfo() const {
  return VersionList(parts_->session.facts(), parts_->model()->family);
}
bool TevronManager::isGetPBLVersion() const { return parts_->session.reading_facts(); }

QString TevronManager::ipAddress() const {
  return QString::fromStdString(parts_->settings.lidar_ip);
}
QString TevronManager::port() const {
  return QString::fromStdString(parts_->settings.command_port);
}
QString TevronManager::serialPort485() const {
  return QString::fromStdString(parts_->settings.serial_port_485);
}
QString TevronManager::serialPort232() const {
  return QString::fromStdString(parts_->settings.serial_port_232);
}
QString TevronManager::cmxClientHostPort() const {
  return QString::fromStdString(parts_->settings.host_port);
}
QString TevronManager::udpPort() const { return QString::number(parts_->settings.udp_port); }
QString TevronManager::baudRate() const {
  return QString::number(parts_->settings.point_cloud_baud_rate_bps);
}
bool TevronManager::enableCmxClientHostPortUi() const { return parts_->model()->host_port_enabled; }

void TevronManager::TakeSetting(std::string* setting, const QString& text) {
  std::string value = text.trimmed().toStdString();
  if (*setting == value) {
    return;
  }
  *setting = std::move(value);
  emit initInfoChanged();
}

void TevronManager::setIpAddress(const QString& ip) { TakeSetting(&parts_->settings.lidar_ip, ip); }
void TevronManager::setPort(const QString& port) {
  TakeSetting(&parts_->settings.command_port, port);
}
void TevronManager::setSerialPort485(const QString& name) {
  TakeSetting(&parts_->settings.serial_port_485, name);
}
void TevronManager::setSerialPort232(const QString& name) {
  TakeSetting(&parts_->settings.serial_port_232, name);
}
void TevronManager::setCmxClientHostPort(const QString& port) {
  TakeSetting(&parts_->settings.host_port, port);
}

void TevronManager::setUdpPort(const QString& port) {
  constexpr int kMaxPort = 65535;
  if (!TakeNumber(port, kMaxPort, &parts_->settings.udp_port)) {
    parts_->report.LogLine("The UDP port has to be a number from 1 to 65535.", LogType::kWarning);
  }
  emit initInfoChanged();
}

void TevronManager::setBaudRate(const QString& baud_rate_bps) {
  constexpr int kMaxBaudRate = std::numeric_limits<int32_t>::max();
  if (!TakeNumber(baud_rate_bps, kMaxBaudRate, &parts_->settings.point_cloud_baud_rate_bps)) {
    parts_->report.LogLine("The baud rate has to be a number from 1 to 2147483647.",
                           LogType::kWarning);
  }
  emit initInfoChanged();
}
