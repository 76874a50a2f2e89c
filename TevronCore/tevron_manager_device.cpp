// What is done with a lidar besides its variables: console, maintenance, and what has yet to come.

#include <memory>
#include <string>

#include "tevron_manager.h"
#include "tevron_manager_parts.h"

void TevronManager::SendCommand(const QString& cmd_qs, const QString& payload_qs) {
  const std::shared_ptr<kavel::lidar::CommandSender> sender = parts_->session.sender();
  const auto family = parts_->model()->connect_type == kNetworkLink
                          ? CommandConsole::Family::kCmx
                          : CommandConsole::Family::kSerial;
  const CommandConsole::Outcome outcome =
      parts_->console.Send(sender.get(), parts_->session.state(), family, cmd_qs, payload_qs);
  if (outcome.attempted) {
    emit sendCommandHistoryChanged();
  }
  if (outcome.success.empty()) {
    return;
  }
  parts_->session.ReadFactsAfterRestart();
  UpdateUI();
  parts_->report.Success(outcome.success);
}

QString TevronManager::getSendCmxCommandReturnHeader() { return parts_->console.ReturnHeader(); }

QString TevronManager::getSendCmxCommandReturnPayload() { return parts_->console.ReturnPayload(); }

void TevronManager::SetLogBytesFlowStatus(bool flag) { parts_->byte_flow->SetOn(flag); }

int TevronManager::Restart() {
  const std::shared_ptr<LidarModel> model = parts_->model();
  const int result = parts_->MaintenanceNow().Restart(*model->table);
  if (result == 0) {
    parts_->session.ReadFactsAfterRestart();
  }
  return result;
}

int TevronManager::Reset() {
  const std::shared_ptr<LidarModel> model = parts_->model();
  const int result = parts_->MaintenanceNow().Reset(*model->table);
  if (result == 0) {
    parts_->session.ReadFactsAfterRestart();
  }
  return result;
}

QString TevronManager::getLidarSN() {
  return QString::fromStdString(parts_->session.SerialNumber());
}

QString TevronManager::getLidarPN() { return QString::fromStdString(parts_->session.PartNumber()); }

void TevronManager::LumoSetStandby(int standby) {
  if (parts_->MaintenanceNow().WriteStandby(standby)) {
    parts_->session.ReadFactsAgain();
  }
}

void TevronManager::LumoSetSpinRate(int spin_rate_rpm) {
  if (parts_->MaintenanceNow().WriteSpinRate(spin_rate_rpm)) {
    parts_->session.ReadFactsAgain();
  }
}

void TevronManager::LumoSetReturnMode(int return_mode) {
  if (parts_->MaintenanceNow().WriteReturnMode(return_mode)) {
    parts_->session.ReadFactsAgain();
  }
}

QVariantList TevronManager::LumoGetLidarFunctionSafety() {
  return SafetyList(parts_->MaintenanceNow().ReadFunctionSafety());
}

QString TevronManager::LumoGetBaudRate() {
  const std::optional<uint32_t> rate = parts_->MaintenanceNow().ReadBaudRate();
  if (!rate) {
    return {};
  }
  setBaudRate(QString::number(*rate));
  return QString::number(*rate);
}

void TevronManager::LumoSetBaudRateFromUI(const QString& baudRateStr) {
  const std::optional<uint32_t> rate = parts_->MaintenanceNow().WriteBaudRate(baudRateStr);
  if (!rate) {
    return;
  }
  setBaudRate(QString::number(*rate));
  parts_->session.ReadFactsAgain();
}

QVariantList TevronManager::LumoGetDestinationConfig(bool silent) {
  const auto held = parts_->MaintenanceNow().ReadDestination(silent);
  return held ? AsList(*held) : QVariantList();
}

bool TevronManager::LumoSetDestinationIPandPort(const QString& ip, int port) {
  const bool is_set = parts_->MaintenanceNow().WriteDestination(ip, port);
  if (is_set) {
    parts_->session.ReadFactsAgain();
  }
  return is_set;
}

QVariantList TevronManager::LumoGetNetConfig(bool silent) {
  const auto held = parts_->MaintenanceNow().ReadNet(silent);
  return held ? AsList(*held) : QVariantList();
}

bool TevronManager::LumoSetNet(const QString& ip, const QString& mask, const QString& gateway,
                               int vlan_flag, int vlan_id) {
  return parts_->MaintenanceNow().WriteNet(ip, mask, gateway, vlan_flag != 0, vlan_id);
}

void TevronManager::KivaSetIMURange(int angularRangeIndex, int accelRangeIndex) {
  if (parts_->MaintenanceNow().WriteImuRange(angularRangeIndex, accelRangeIndex)) {
    parts_->session.ReadFactsAgain();
  }
}

int TevronManager::RefuseForNow(const char* operation) {
  parts_->report.LogLine(std::string(operation) + " is not available in this version.",
                         LogType::kWarning);
  return -1;
}

void TevronManager::StartGetConfigFile() { RefuseForNow("Reading the configuration file"); }

int TevronManager::UpgradeLidar(const QUrl& /*fileUrl*/, int, int, int) {
  return RefuseForNow("Upgrading the lidar");
}

int TevronManager::LumoUpgradeLidar(const QUrl& /*fileUrl*/) {
  return RefuseForNow("Upgrading the lidar");
}

int TevronManager::KivaUpgradeLidar(const QUrl& /*fileUrl*/) {
  return RefuseForNow("Upgrading the lidar");
}

int TevronManager::DownloadOperationLog(const QUrl& /*fileUrl*/) {
  return RefuseForNow("Downloading the operation log");
}

int TevronManager::DownloadOperationLogThread(const QUrl& /*fileUrl*/) {
  return RefuseForNow("Downloading the operation log");
}

int TevronManager::DownloadLog(const QUrl& /*fileUrl*/, const QString& /*type*/) {
  return RefuseForNow("Downloading a log");
}

int TevronManager::LumoGetCorrection(const QString&) {
  return RefuseForNow("Downloading the calibration");
}

void TevronManager::LumoSetUpgradeMode(int) { RefuseForNow("The upgrade mode"); }

void TevronManager::selectMonitorHwVersion(const QString& /*version*/) {
  RefuseForNow("The monitor");
}

void TevronManager::refreshMonitor() { RefuseForNow("The monitor"); }

void TevronManager::startMonitorRecord(const QUrl& /*folderUrl*/) { RefuseForNow("Recording"); }

void TevronManager::stopMonitorRecord() { RefuseForNow("Recording"); }
