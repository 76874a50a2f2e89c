#include "maintenance/device_facts.h"

#include <QString>
#include <QVariantMap>

using kavel::lidar::DeviceStatus;
using kavel::lidar::SafetyState;

namespace {

/// One fact that the lidar told.
QVariantMap Read(const QString& key, const QString& name, const QVariant& raw,
                 const QString& value) {
  return {{"key", key}, {"name", name}, {"raw", raw}, {"value", value}, {"state", "read"}};
}

QVariantMap Unread(const char* key, const char* name) {
  return {{"key", key}, {"name", name}, {"value", kUnread}, {"state", "unread"}};
}

QVariantMap TextFact(const char* key, const char* name, const std::string& text) {
  const QString value = QString::fromStdString(text);
  return text == kUnread ? Unread(key, name) : Read(key, name, value, value);
}

QString ReturnModeText(unsigned mode) {
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

QString SpinRateText(unsigned rpm) { return QString("%1 rpm").arg(rpm); }

QString StandbyText(unsigned standby) { return standby != 0 ? "Standby" : "Working"; }

QString NumberText(unsigned number) { return QString::number(number); }

QString UpTimeText(unsigned seconds) {
  return QString("%1:%2:%3")
      .arg(seconds / 3600)
      .arg(seconds / 60 % 60, 2, 10, QChar('0'))
      .arg(seconds % 60, 2, 10, QChar('0'));
}

}  // namespace

std::string VersionText(const kavel::lidar::DeviceVersions& versions, SerialFamily family) {
  if (versions.firmware == kUnread || family != SerialFamily::kKiva) {
    return versions.firmware == kUnread ? "" : versions.firmware;
  }
  return versions.firmware + " (BMB FPGA " + versions.fpga_a + ", TMB FPGA " + versions.fpga_b +
         ")";
}

QVariantList InfoList(const DeviceFacts& facts, SerialFamily family) {
  QVariantList list;
  list.append(TextFact("serial_number", "Serial Number", facts.serial_number));
  list.append(TextFact("part_number", "Part Number", facts.part_number));
  const auto append = [&](const char* key, const char* name, auto DeviceStatus::*member,
                          QString (*text)(unsigned)) {
    if (facts.status) {
      const unsigned raw = (*facts.status).*member;
      list.append(Read(key, name, raw, text(raw)));
    } else {
      list.append(Unread(key, name));
    }
  };
  append("return_mode", "Return Mode", &DeviceStatus::return_mode, ReturnModeText);
  append("spin_rate", "Spin Rate", &DeviceStatus::spin_rate_rpm, SpinRateText);
  append("standby", "Mode", &DeviceStatus::standby, StandbyText);
  if (family == SerialFamily::kKiva) {
    append("angular_range", "IMU Angular Range Index", &DeviceStatus::angular_range_index,
           NumberText);
    append("accel_range", "IMU Acceleration Range Index", &DeviceStatus::accel_range_index,
           NumberText);
  }
  append("up_time", "Up Time", &DeviceStatus::up_time_s, UpTimeText);
  return list;
}

QVariantList VersionList(const DeviceFacts& facts, SerialFamily family) {
  QVariantList list;
  list.append(TextFact("firmware", "Firmware Version", facts.versions.firmware));
  list.append(TextFact("pbl", "PBL Version", facts.pbl_version));
  if (family == SerialFamily::kKiva) {
    list.append(TextFact("fpga_bottom", "BMB FPGA Version", facts.versions.fpga_a));
    list.append(TextFact("fpga_top", "TMB FPGA Version", facts.versions.fpga_b));
  } else if (family == SerialFamily::kLumo) {
    list.append(TextFact("junction_box", "Junction Box Version", facts.versions.fpga_a));
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
    list.append(Read(QString("safety_%1").arg(state.id),
                     QString("Safety function %1").arg(state.id), unsigned{state.state}, text));
  }
  return list;
}

QVariantList AsList(const kavel::lidar::Destination& destination) {
  return {QString::fromStdString(destination.ip), int{destination.port}};
}

QVariantList AsList(const kavel::lidar::NetConfig& net) {
  return {QString::fromStdString(net.ip), QString::fromStdString(net.mask),
          QString::fromStdString(net.gateway), net.vlan ? 1 : 0, int{net.vlan_id}};
}
