#include "maintenance/device_facts.h"

#include <QString>
#include <QVariantMap>

using kavel::lidar::DeviceStatus;
using kavel::lidar::SafetyState;

namespace {

void Append(QVariantList* list, const QString& name, const QString& value) {
  list->append(QVariantMap{{"name", name}, {"value", value}});
}

void Append(QVariantList* list, const QString& name, const std::string& value) {
  Append(list, name, QString::fromStdString(value));
}

QString ReturnModeText(uint8_t mode) {
  switch (mode) {
    case 0:
      return "Strongest";
    case 1:
      return "Last";
    case 2:
      return "Strongest and last";
    default:
      return QString("Mode %1").arg(mode);
  }
}

QString UpTimeText(uint32_t seconds) {
  return QString("%1:%2:%3")
      .arg(seconds / 3600)
      .arg(seconds / 60 % 60, 2, 10, QChar('0'))
      .arg(seconds % 60, 2, 10, QChar('0'));
}

}  // namespace

QVariantList InfoList(const DeviceFacts& facts, SerialFamily family) {
  QVariantList list;
  Append(&list, "Serial Number", facts.serial_number);
  Append(&list, "Part Number", facts.part_number);
  const bool read = facts.status.has_value();
  const DeviceStatus status = facts.status.value_or(DeviceStatus());
  const auto append = [&list, read](const QString& name, const QString& value) {
    Append(&list, name, read ? value : QString(kUnread));
  };
  append("Return Mode", ReturnModeText(status.return_mode));
  append("Spin Rate", QString("%1 rpm").arg(status.spin_rate_rpm));
  append("Mode", status.standby ? "Standby" : "Working");
  if (family == SerialFamily::kKiva) {
    append("IMU Angular Range Index", QString::number(status.angular_range_index));
    append("IMU Acceleration Range Index", QString::number(status.accel_range_index));
  }
  append("Up Time", UpTimeText(status.up_time_s));
  return list;
}

QVariantList VersionList(const DeviceFacts& facts, SerialFamily family) {
  QVariantList list;
  Append(&list, "Firmware Version", facts.versions.firmware);
  Append(&list, "PBL Version", facts.pbl_version);
  if (family == SerialFamily::kKiva) {
    Append(&list, "BMB FPGA Version", facts.versions.fpga_a);
    Append(&list, "TMB FPGA Version", facts.versions.fpga_b);
  } else if (family == SerialFamily::kLumo) {
    Append(&list, "Junction Box Version", facts.versions.fpga_a);
  }
  return list;
}

QVariantList SafetyList(const std::vector<SafetyState>& states) {
  QVariantList list;
  for (const SafetyState& state : states) {
    QString text = state.state == 0 ? "OK" : QString("State %1").arg(state.state);
    if (state.fault_code != 0) {
      text += QString(", fault code 0x%1").arg(state.fault_code, 4, 16, QChar('0'));
    }
    Append(&list, QString("Safety function %1").arg(state.id), text);
  }
  return list;
}
