#include "maintenance/maintenance.h"

#include <exception>
#include <functional>
#include <limits>

#include "CmxClient/cmx_client.h"
#include "CmxClient/device_commands.h"
#include "variables/command_code.h"

using namespace kavel::lidar;  // the device requests; this file is about little else

/// The words of an operation; null or "" where it says nothing.
struct MaintenanceTexts {
  const char* serial_only;  ///< over any other link than kSerialCmx
  const char* not_ready;
  const char* success;
  const char* failure;  ///< followed by the text of the error
};

/// A command that a variable of the table names, with its words.
struct TableCommandTexts {
  const char* var_name;
  const char* missing;
  const char* success;
  const char* failure;
};

namespace {

// Meant: the two endings differ between the operations.
constexpr char kUpgrading[] = "lidar is not connected, or lidar is upgrading";
constexpr char kUpgrade[] = "lidar is not connected, or lidar is upgrade";

constexpr MaintenanceTexts kGetBaudRate = {"GetBaudRate is only supported in CMX serial mode",
                                           kUpgrading, "", "get baud rate error, ret:"};
constexpr MaintenanceTexts kSetBaudRate = {"SetBaudRate is only supported in CMX serial mode",
                                           kUpgrading, "set baud rate successful",
                                           "set baud rate error, ret:"};
constexpr MaintenanceTexts kGetDestination = {
    "GetDestinationConfig is only supported in CMX serial mode", kUpgrading, "",
    "get destination config error, ret:"};
constexpr MaintenanceTexts kSetDestination = {
    "SetDestinationIPandPort is only supported in CMX serial mode", kUpgrading,
    "set destination IP and port successful", "set destination IP and port error, ret:"};
constexpr MaintenanceTexts kGetNet = {"GetNetConfig is only supported in CMX serial mode",
                                      kUpgrading, "", "get net config error, ret:"};
constexpr MaintenanceTexts kSetNet = {
    "SetNet is only supported in CMX serial mode", kUpgrading,
    "Set Lidar Successfully\nNote that if you have changed the TCP-related settings, you will need "
    "to restart the lidar for it to work.",
    "set net error, ret:"};
constexpr MaintenanceTexts kSetReturnMode = {nullptr, kUpgrade, "set return mode successful",
                                             "set lidar return mode error, ret:"};
constexpr MaintenanceTexts kSetSpinRate = {nullptr, kUpgrade, "set spin rate successful",
                                           "set lidar spin rate error, ret:"};
constexpr MaintenanceTexts kSetStandby = {nullptr, kUpgrade, "set lidar mode successful",
                                          "set lidar mode error, ret:"};
constexpr MaintenanceTexts kSetImuRange = {
    "Kiva IMU range setting is only supported in CMX_SERIAL mode", kUpgrade,
    "IMU range set successfully", "set IMU range error, ret:"};
constexpr MaintenanceTexts kReadPblVersion = {nullptr, kUpgrade, "", "get pbl version error, ret:"};
constexpr MaintenanceTexts kReadSerialNumber = {nullptr, kUpgrade, "", "get SN failed, ret:"};
constexpr MaintenanceTexts kReadPartNumber = {nullptr, kUpgrade, "", "get PN failed, ret:"};
constexpr MaintenanceTexts kReadVersions = {nullptr, kUpgrade, "", "get version error, ret:"};
constexpr MaintenanceTexts kReadStatus = {nullptr, kUpgrade, "", "get status error, ret:"};
constexpr MaintenanceTexts kReadSafety = {nullptr, kUpgrade, "", "get function safety error, ret:"};
constexpr MaintenanceTexts kRestartKiva = {nullptr, "Kiva restart: CMX not available", "",
                                           "Kiva restart command failed, ret:"};

constexpr TableCommandTexts kTableRestart = {"Restart",
                                             "The table of this model names no restart command.",
                                             "Lidar restart.", "restart error, ret:"};
constexpr TableCommandTexts kTableReset = {"Reset",
                                           "The table of this model names no reset command.",
                                           "Lidar reset.", "reset error, ret:"};

constexpr unsigned kMaxAngularRangeIndex = 5;
constexpr unsigned kMaxAccelRangeIndex = 3;

/// Runs set(value) when the value fits the field that carries it.
template <typename Field, typename Set>
int32_t WithinField(int value, Set set) {
  constexpr int kMax = std::numeric_limits<Field>::max();
  return value < 0 || value > kMax ? kBadArgument : set(static_cast<Field>(value));
}

}  // namespace

std::optional<uint32_t> Maintenance::ReadBaudRate() {
  uint32_t rate = 0;
  if (!IsReady(kGetBaudRate) || !Conclude(kGetBaudRate, GetBaudRate(*link_.sender, &rate))) {
    return std::nullopt;
  }
  return rate;
}

std::optional<uint32_t> Maintenance::WriteBaudRate(const QString& text) {
  if (!IsReady(kSetBaudRate)) {
    return std::nullopt;
  }
  const uint32_t rate = text.toUInt();
  if (rate == 0) {
    report_.Error("invalid baud rate value");
    return std::nullopt;
  }
  if (!Conclude(kSetBaudRate, SetBaudRate(*link_.sender, rate))) {
    return std::nullopt;
  }
  return rate;
}

QVariantList Maintenance::ReadDestination(bool silent) {
  Destination held;
  if (!IsReady(kGetDestination, silent) ||
      !Conclude(kGetDestination, GetDestination(*link_.sender, &held), silent)) {
    return {};
  }
  return {QString::fromStdString(held.ip), int{held.port}};
}

bool Maintenance::WriteDestination(const QString& ip, int port) {
  if (!IsReady(kSetDestination)) {
    return false;
  }
  return Conclude(kSetDestination, WithinField<uint16_t>(port, [&](uint16_t udp_port) {
                    return SetDestination(*link_.sender, {ip.toStdString(), udp_port});
                  }));
}

QVariantList Maintenance::ReadNet(bool silent) {
  NetConfig held;
  if (!IsReady(kGetNet, silent) || !Conclude(kGetNet, GetNetConfig(*link_.sender, &held), silent)) {
    return {};
  }
  return {QString::fromStdString(held.ip), QString::fromStdString(held.mask),
          QString::fromStdString(held.gateway), held.vlan ? 1 : 0, int{held.vlan_id}};
}

bool Maintenance::WriteNet(const QString& ip, const QString& mask, const QString& gateway,
                           bool vlan, int vlan_id) {
  if (!IsReady(kSetNet)) {
    return false;
  }
  const int32_t result = WithinField<uint16_t>(vlan ? vlan_id : 0, [&](uint16_t id) {
    return SetNetConfig(*link_.sender,
                        {ip.toStdString(), mask.toStdString(), gateway.toStdString(), vlan, id});
  });
  // Meant: a lidar that has taken new network settings drops the link instead of answering.
  return Conclude(kSetNet, result == kNoReply ? 0 : result);
}

bool Maintenance::WriteReturnMode(int return_mode) {
  if (!IsReady(kSetReturnMode)) {
    return false;
  }
  return Conclude(kSetReturnMode, WithinField<uint8_t>(return_mode, [this](uint8_t mode) {
                    return SetReturnMode(*link_.sender, mode);
                  }));
}

bool Maintenance::WriteSpinRate(int spin_rate_rpm) {
  if (!IsReady(kSetSpinRate)) {
    return false;
  }
  return Conclude(kSetSpinRate, WithinField<uint16_t>(spin_rate_rpm, [this](uint16_t rpm) {
                    return SetSpinRate(*link_.sender, rpm);
                  }));
}

bool Maintenance::WriteStandby(int standby) {
  if (!IsReady(kSetStandby)) {
    return false;
  }
  return Conclude(kSetStandby, standby == 0 || standby == 1
                                   ? SetStandby(*link_.sender, standby == 1)
                                   : kBadArgument);
}

bool Maintenance::WriteImuRange(int angular_range_index, int accel_range_index) {
  // The indices are looked at before the link is, and a negative one is a large one.
  if (static_cast<unsigned>(angular_range_index) > kMaxAngularRangeIndex) {
    report_.Error("Invalid angular range index");
    return false;
  }
  if (static_cast<unsigned>(accel_range_index) > kMaxAccelRangeIndex) {
    report_.Error("Invalid acceleration range index");
    return false;
  }
  if (!IsReady(kSetImuRange)) {
    return false;
  }
  return Conclude(kSetImuRange,
                  SetImuRange(*link_.sender, static_cast<uint8_t>(angular_range_index),
                              static_cast<uint8_t>(accel_range_index)));
}

QVariantList Maintenance::ReadFunctionSafety() {
  std::vector<SafetyState> states;
  if (!IsReady(kReadSafety) || !Conclude(kReadSafety, GetFunctionSafety(*link_.sender, &states))) {
    return {};
  }
  return SafetyList(states);
}

DeviceFacts Maintenance::ReadFacts(DeviceFacts facts) {
  if (!IsReady(kReadSerialNumber)) {
    return facts;
  }
  std::string serial_number;
  std::string part_number;
  DeviceStatus status;
  struct Step {
    const MaintenanceTexts& texts;
    std::function<int32_t()> exchange;
    std::function<void()> keep;
  };
  const Step steps[] = {
      {kReadSerialNumber, [&] { return GetSerialNumber(*link_.sender, &serial_number); },
       [&] { KeepValid(serial_number, "SN invalid after validation", &facts.serial_number); }},
      {kReadPartNumber, [&] { return GetPartNumber(*link_.sender, &part_number); },
       [&] { KeepValid(part_number, "PN invalid after validation", &facts.part_number); }},
      {kReadVersions, [&] { return GetVersions(*link_.sender, &facts.versions); }, [] {}},
      {kReadPblVersion, [&] { return GetPblVersion(*link_.sender, &facts.pbl_version); }, [] {}},
      {kReadStatus, [&] { return GetStatus(*link_.sender, &status); },
       [&] { facts.status = status; }},
  };
  for (const Step& step : steps) {
    const int32_t result = step.exchange();
    if (Conclude(step.texts, result)) {
      step.keep();
    } else if (result == kNoReply) {
      break;
    }
  }
  return facts;
}

int32_t Maintenance::RestartKiva() {
  if (!IsReady(kRestartKiva)) {
    return kNotConnected;
  }
  const int32_t result = RestartDevice(*link_.sender);
  if (Conclude(kRestartKiva, result)) {
    report_.LogLine("Kiva restart command sent", LogType::kInfo);
  }
  return result;
}

int32_t Maintenance::Restart(const ConfigParser& table, bool silent) {
  return Send(kTableRestart, table, silent);
}

int32_t Maintenance::Reset(const ConfigParser& table, bool silent) {
  return Send(kTableReset, table, silent);
}

int32_t Maintenance::Send(const TableCommandTexts& texts, const ConfigParser& table, bool silent) {
  const VarInfo* const var = table.FindByName(texts.var_name);
  const char* obstacle = link_.state.Obstacle(link_.sender);
  if (obstacle == nullptr && (var == nullptr || var->set_cmd.empty())) {
    obstacle = texts.missing;
  }
  if (obstacle != nullptr) {
    if (!silent) {
      report_.Error(obstacle);
    }
    return kNotConnected;
  }

  int32_t reason = 0;
  try {
    const WireCommand command = WireCommandOf(var->set_cmd, var->set_payload);
    std::vector<uint8_t> reply;
    if (link_.sender->QueryCommand(command.payload, reply, command.code, false, &reason) == 0) {
      if (!silent) {
        report_.Success(texts.success);
      }
      return 0;
    }
  } catch (const std::exception& e) {  // the table's command text is no code
    Fail(texts.failure + std::string(e.what()), silent);
    return kNotConnected;
  }
  Fail(texts.failure + CmxClient::ErrorText(reason), silent);
  return reason == 0 ? kNotConnected : reason;
}

bool Maintenance::IsReady(const MaintenanceTexts& texts, bool silent) {
  const bool wrong_link = texts.serial_only != nullptr && link_.connect_type != kSerialCmx;
  const bool ready = link_.state.connected && link_.sender != nullptr && !link_.state.upgrading;
  if (wrong_link || !ready) {
    if (!silent) {
      report_.Error(wrong_link ? texts.serial_only : texts.not_ready);
    }
    return false;
  }
  return true;
}

bool Maintenance::Conclude(const MaintenanceTexts& texts, int32_t result, bool silent) {
  if (result == 0) {
    report_.Success(texts.success);
    return true;
  }
  Fail(texts.failure + CmxClient::ErrorText(result), silent);
  return false;
}

void Maintenance::Fail(const std::string& text, bool silent) {
  if (!silent) {
    report_.Error(text);
  }
  report_.LogLine(text, LogType::kError);
}

void Maintenance::KeepValid(const std::string& number, const char* if_invalid, std::string* kept) {
  if (IsValidNumber(number)) {
    *kept = number;
  } else {
    Fail(if_invalid, false);
  }
}
