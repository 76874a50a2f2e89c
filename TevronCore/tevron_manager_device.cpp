// What is done with a lidar besides its variables: console, maintenance, upgrade.

#include <memory>
#include <string>

#include "tevron_manager.h"
#include "tevron_manager_parts.h"
#include "upgrade/upgrade_mode.h"

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
  return parts_->AfterRestart(parts_->MaintenanceNow().Restart(*parts_->model()->table));
}

int TevronManager::Reset() {
  return parts_->AfterRestart(parts_->MaintenanceNow().Reset(*parts_->model()->table));
}

QString TevronManager::getLidarSN() {
  return QString::fromStdString(parts_->session.SerialNumber());
}

QString TevronManager::getLidarPN() { return QString::fromStdString(parts_->session.PartNumber()); }

// The facts are read again whatever became of a setting: one whose answer was lost may be in force.

void TevronManager::LumoSetStandby(int standby) {
  parts_->MaintenanceNow().WriteStandby(standby);
  parts_->session.ReadFactsAgain();
}

void TevronManager::LumoSetSpinRate(int spin_rate_rpm) {
  parts_->MaintenanceNow().WriteSpinRate(spin_rate_rpm);
  parts_->session.ReadFactsAgain();
}

void TevronManager::LumoSetReturnMode(int return_mode) {
  parts_->MaintenanceNow().WriteReturnMode(return_mode);
  parts_->session.ReadFactsAgain();
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
  if (rate) {
    setBaudRate(QString::number(*rate));
  }
}

QVariantList TevronManager::LumoGetDestinationConfig(bool silent) {
  const auto held = parts_->MaintenanceNow().ReadDestination(silent);
  return held ? AsList(*held) : QVariantList();
}

bool TevronManager::LumoSetDestinationIPandPort(const QString& ip, int port) {
  return parts_->MaintenanceNow().WriteDestination(ip, port);
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
  parts_->MaintenanceNow().WriteImuRange(angularRangeIndex, accelRangeIndex);
  parts_->session.ReadFactsAgain();
}

UpgradeSnapshot TevronManager::UpgradeNow() const { return parts_->upgrade.Now(); }

std::string TevronManager::RunningVersion() const { return parts_->session.RunningVersion(); }

std::optional<UartArrivals> TevronManager::UartNow() const { return parts_->session.Uart(); }

bool TevronManager::TakesPackages() const {
  return ::TakesPackages(parts_->model()->connect_type, parts_->model()->family);
}

int TevronManager::UpgradeLidar(const QUrl& fileUrl, int, int, int) {
  return parts_->upgrade.Start(fileUrl);
}

int TevronManager::LumoUpgradeLidar(const QUrl& fileUrl) { return parts_->upgrade.Start(fileUrl); }

int TevronManager::KivaUpgradeLidar(const QUrl& fileUrl) {
  return parts_->upgrade.StartPackage(fileUrl);
}

void TevronManager::LumoSetUpgradeMode(int mode) {
  const std::shared_ptr<Connection>& connection = parts_->session.connection();
  SetUpgradeMode(connection == nullptr ? nullptr : connection->serial().get(),
                 parts_->session.state(), mode, parts_->report);
}
