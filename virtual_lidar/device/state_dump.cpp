#include "device/state_dump.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <vector>

#include "CmxClient/hex_text.h"
#include "Platform/ipv4_text.h"
#include "Wire/big_endian.h"
#include "files/whole_file.h"
#include "variables/value_text.h"

namespace {

QJsonObject DumpVariable(const VariableMemory::Cell& cell, uint32_t up_time_s) {
  const VarInfo& var = *cell.var;
  const std::vector<uint8_t> bytes = VariableMemory::ValueNow(cell, up_time_s);
  QJsonObject object{{"id", QString::fromStdString(var.var_id)}};
  if (var.var_name == kSharedSecretKey) {
    object["bytes"] = static_cast<int>(bytes.size());
    return object;
  }
  std::string text;
  std::string fault;
  // A type without a text form has its bytes alone.
  if (DecodeValue(var, bytes, &text, &fault)) {
    object["text"] = QString::fromStdString(text);
  }
  object["hex"] = QString::fromStdString(kavel::lidar::HexText(bytes));
  return object;
}

QString Address(const std::vector<uint8_t>& bytes, size_t at) {
  return QString::fromStdString(kavel::lidar::DottedIpv4(bytes.data() + at));
}

int Number16(const std::vector<uint8_t>& bytes, size_t at) {
  return kavel::lidar::ReadBigEndian16(bytes.data() + at);
}

QJsonObject DumpMaintenance(const MaintenanceState& state) {
  return {{"baud_rate_bps", static_cast<qint64>(state.baud_rate_bps)},
          {"destination_ip", Address(state.destination, 0)},
          {"destination_port", Number16(state.destination, 4)},
          {"ip", Address(state.net, 0)},
          {"mask", Address(state.net, 4)},
          {"gateway", Address(state.net, 8)},
          {"vlan", state.net[12]},
          {"vlan_id", Number16(state.net, 13)},
          {"return_mode", state.return_mode},
          {"spin_rate_rpm", state.spin_rate_rpm},
          {"standby", state.standby},
          {"angular_range_index", state.angular_range_index},
          {"accel_range_index", state.accel_range_index},
          {"mode", state.mode},
          {"sub_mode", state.sub_mode}};
}

QJsonObject DumpFirmware(const FirmwareUnit& firmware) {
  const char* const names[] = {"A", "B"};
  QJsonObject partitions;
  QJsonArray waiting;
  for (const size_t i : {size_t{0}, size_t{1}}) {
    const FirmwareVersion& version = firmware.partition(i);
    partitions[names[i]] = QJsonObject{{"version", QString::fromStdString(version.number)},
                                       {"date", QString::fromStdString(version.date)}};
  }
  if (firmware.application_waits()) {
    waiting.append(FirmwareComponentName(kavel::lidar::kApplicationImage));
  }
  QJsonObject root{{"active", names[firmware.active()]},
                   {"partitions", partitions},
                   {"half_image", firmware.half_image()}};
  QJsonObject components;
  for (const auto& [type, component] : firmware.components()) {
    components[FirmwareComponentName(type)] = QString::fromStdString(component.number);
    if (component.waiting) {
      waiting.append(FirmwareComponentName(type));
    }
  }
  if (!components.isEmpty()) {
    root["components"] = components;
  }
  root["waiting"] = waiting;
  return root;
}

}  // namespace

std::string DumpState(const VirtualDevice& device) {
  const uint32_t up_time_s = device.UpTimeSeconds();
  QJsonObject variables;
  for (const VariableMemory::Cell& cell : device.memory().cells()) {
    variables[QString::fromStdString(cell.var->var_name)] = DumpVariable(cell, up_time_s);
  }
  QJsonObject root{{"model", QString::fromStdString(device.model())},
                   {"up_time_s", static_cast<qint64>(up_time_s)},
                   {"variables", variables},
                   {"firmware", DumpFirmware(device.firmware())}};
  if (device.maintenance().enabled()) {
    root["maintenance"] = DumpMaintenance(device.maintenance().state());
  }
  return QJsonDocument(root).toJson().toStdString();
}

bool WriteDump(const VirtualDevice& device, const std::string& path, std::string* error) {
  const FileOutcome outcome = WriteWholeFile(path, DumpState(device));
  *error = outcome.written ? "" : "cannot write " + PathText(path) + ": " + outcome.reason;
  return outcome.written;
}
