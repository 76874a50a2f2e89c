#include "maintenance/device_facts.h"

#include <QDateTime>
#include <QString>
#include <QVariantMap>
#include <utility>

using kavel::lidar::DeviceStatus;
using kavel::lidar::SafetyState;

namespace {

/// One fact that the lidar told.
QVariantMap Read(const QString& key, const QString& name, const QVariant& raw,
                 const QString& value) {
  return {{"key", key}, {"name", name}, {"raw", raw}, {"value", value}, {"state", "read"}};
}

QString LocalTime(const std::chrono::system_clock::time_point& time) {
  const auto since_epoch =
      std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
  return QDateTime::fromMSecsSinceEpoch(since_epoch.count()).toString("hh:mm:ss");
}

/// Facts as the lidar told them, with what became of asking for them.
class FactList {
 public:
  explicit FactList(const DeviceFacts& facts) : facts_(facts) {}

  void Append(FactGroup group, const char* key, const char* name, const std::string& text) {
    const QString value = QString::fromStdString(text);
    Append(group, text == kUnreadFact ? Unread(key, name) : Read(key, name, value, value));
  }

  /// A number of the status, and the words for it.
  void Append(const char* key, const char* name, unsigned raw, const QString& value) {
    Append(FactGroup::kStatus, facts_.status ? Read(key, name, raw, value) : Unread(key, name));
  }

  QVariantList Take() { return std::move(list_); }

 private:
  static QVariantMap Unread(const char* key, const char* name) {
    return {{"key", key}, {"name", name}, {"value", kUnreadFact}, {"state", "unread"}};
  }

  void Append(FactGroup group, QVariantMap fact) {
    const FactReading& reading = facts_.readings[static_cast<size_t>(group)];
    fact["read_at"] = reading.read_at ? LocalTime(*reading.read_at) : QString();
    fact["failure"] = QString::fromStdString(reading.failure);
    if (!reading.failure.empty() && fact["state"] == "read") {
      fact["state"] = "stale";
    }
    list_.append(fact);
  }

  const DeviceFacts& facts_;
  QVariantList list_;
};

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

QString AngularRangeText(unsigned index) {
  constexpr int kLargest = 5;
  return index > kLargest ? QString("Range %1").arg(index) : QString("±%1 °/s").arg(125 << index);
}

QString AccelRangeText(unsigned index) {
  constexpr int kLargest = 3;
  return index > kLargest ? QString("Range %1").arg(index) : QString("±%1 g").arg(2 << index);
}

QString UpTimeText(unsigned seconds) {
  return QString("%1:%2:%3")
      .arg(seconds / 3600)
      .arg(seconds / 60 % 60, 2, 10, QChar('0'))
      .arg(seconds % 60, 2, 10, QChar('0'));
}

}  // namespace

std::string VersionText(const kavel::lidar::DeviceVersions& versions, SerialFamily family) {
  if (versions.firmware == kUnreadFact || family != SerialFamily::kKiva) {
    return versions.firmware == kUnreadFact ? "" : versions.firmware;
  }
  return versions.firmware + " (BMB FPGA " + versions.fpga_a + ", TMB FPGA " + versions.fpga_b +
         ")";
}

QVariantList InfoList(const DeviceFacts& facts, SerialFamily family) {
  FactList list(facts);
  list.Append(FactGroup::kSerialNumber, "serial_number", "Serial Number", facts.serial_number);
  list.Append(FactGroup::kPartNumber, "part_number", "Part Number", facts.part_number);
  const DeviceStatus status = facts.status.value_or(DeviceStatus{});
  list.Append("return_mode", "Return Mode", status.return_mode, ReturnModeText(status.return_mode));
  list.Append("spin_rate", "Spin Rate", status.spin_rate_rpm, SpinRateText(status.spin_rate_rpm));
  list.Append("standby", "Mode", status.standby, StandbyText(status.standby));
  if (family == SerialFamily::kKiva) {
    list.Append("angular_range", "IMU Angular Range", status.angular_range_index,
                AngularRangeText(status.angular_range_index));
    list.Append("accel_range", "IMU Acceleration Range", status.accel_range_index,
                AccelRangeText(status.accel_range_index));
  }
  list.Append("up_time", "Up Time", status.up_time_s, UpTimeText(status.up_time_s));
  return list.Take();
}

QVariantList VersionList(const DeviceFacts& facts, SerialFamily family) {
  FactList list(facts);
  list.Append(FactGroup::kVersions, "firmware", "Firmware Version", facts.versions.firmware);
  list.Append(FactGroup::kPblVersion, "pbl", "PBL Version", facts.pbl_version);
  if (family == SerialFamily::kKiva) {
    list.Append(FactGroup::kVersions, "fpga_bottom", "BMB FPGA Version", facts.versions.fpga_a);
    list.Append(FactGroup::kVersions, "fpga_top", "TMB FPGA Version", facts.versions.fpga_b);
  } else if (family == SerialFamily::kLumo) {
    list.Append(FactGroup::kVersions, "junction_box", "Junction Box Version",
                facts.versions.fpga_a);
  }
  return list.Take();
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
