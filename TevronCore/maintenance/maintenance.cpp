#include "maintenance/maintenance.h"

#include <chrono>
#include <exception>
#include <limits>
#include <stdexcept>
#include <utility>

#include "CmxClient/cmx_client.h"
#include "CmxClient/device_commands.h"
#include "session/lost_answer.h"
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

template <typename Exchange>
bool Maintenance::Run(const MaintenanceTexts& texts, Exchange exchange, bool silent) {
  return IsReady(texts, silent) && Conclude(texts, exchange(*link_.sender), silent);
}

std::optional<uint32_t> Maintenance::ReadBaudRate() {
  uint32_t rate = 0;
  const auto get = [&](CommandSender& lidar) { return GetBaudRate(lidar, &rate); };
  return Run(kGetBaudRate, get) ? std::optional(rate) : std::nullopt;
}

std::optional<uint32_t> Maintenance::WriteBaudRate(const QString& text) {
  const uint32_t rate = text.toUInt();
  if (rate == 0) {
    if (IsReady(kSetBaudRate)) {
      report_.Error("invalid baud rate value");
    }
    return std::nullopt;
  }
  // Meant: the open line keeps its rate. The new one is that of the point cloud's line, after the
  // lidar's next restart.
  const auto set = [&](CommandSender& lidar) { return SetBaudRate(lidar, rate); };
  return Run(kSetBaudRate, set) ? std::optional(rate) : std::nullopt;
}

std::optional<Destination> Maintenance::ReadDestination(bool silent) {
  Destination held;
  const auto get = [&](CommandSender& lidar) { return GetDestination(lidar, &held); };
  return Run(kGetDestination, get, silent) ? std::optional(held) : std::nullopt;
}

bool Maintenance::WriteDestination(const QString& ip, int port) {
  return Run(kSetDestination, [&](CommandSender& lidar) {
    return WithinField<uint16_t>(port, [&](uint16_t udp_port) {
      return SetDestination(lidar, {ip.toStdString(), udp_port});
    });
  });
}

std::optional<NetConfig> Maintenance::ReadNet(bool silent) {
  NetConfig held;
  const auto get = [&](CommandSender& lidar) { return GetNetConfig(lidar, &held); };
  return Run(kGetNet, get, silent) ? std::optional(held) : std::nullopt;
}

bool Maintenance::WriteNet(const QString& ip, const QString& mask, const QString& gateway,
                           bool vlan, int vlan_id) {
  return Run(kSetNet, [&](CommandSender& lidar) {
    const int32_t result = WithinField<uint16_t>(vlan ? vlan_id : 0, [&](uint16_t id) {
      return SetNetConfig(lidar,
                          {ip.toStdString(), mask.toStdString(), gateway.toStdString(), vlan, id});
    });
    // Meant: a lidar that has taken new network settings drops the link instead of answering.
    return result == kNoReply ? 0 : result;
  });
}

bool Maintenance::WriteReturnMode(int return_mode) {
  return Run(kSetReturnMode, [&](CommandSender& lidar) {
    return WithinField<uint8_t>(return_mode,
                                [&](uint8_t mode) { return SetReturnMode(lidar, mode); });
  });
}

bool Maintenance::WriteSpinRate(int spin_rate_rpm) {
  return Run(kSetSpinRate, [&](CommandSender& lidar) {
    return WithinField<uint16_t>(spin_rate_rpm,
                                 [&](uint16_t rpm) { return SetSpinRate(lidar, rpm); });
  });
}

bool Maintenance::WriteStandby(int standby) {
  return Run(kSetStandby, [&](CommandSender& lidar) {
    return standby == 0 || standby == 1 ? SetStandby(lidar, standby == 1) : kBadArgument;
  });
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
  return Run(kSetImuRange, [&](CommandSender& lidar) {
    return SetImuRange(lidar, static_cast<uint8_t>(angular_range_index),
                       static_cast<uint8_t>(accel_range_index));
  });
}

std::vector<SafetyState> Maintenance::ReadFunctionSafety() {
  std::vector<SafetyState> states;
  Run(kReadSafety, [&](CommandSender& lidar) { return GetFunctionSafety(lidar, &states); });
  return states;
}

DeviceFacts Maintenance::ReadFacts(DeviceFacts facts, bool silent) {
  if (!IsReady(kReadSerialNumber, silent)) {
    return facts;
  }
  CommandSender& lidar = *link_.sender;
  bool is_silent = false;
  const auto read = [&](FactGroup group, const MaintenanceTexts& texts, auto get, auto* fact) {
    if (!IsReady(texts, true)) {
      return false;  // an upgrade that has begun meanwhile has the line to itself
    }
    FactReading& reading = facts.readings[static_cast<size_t>(group)];
    const int32_t result = is_silent ? kNoReply : get(lidar, fact);
    reading.failure = result == 0 ? "" : CmxClient::ErrorText(result);
    if (result == 0) {
      reading.read_at = std::chrono::system_clock::now();
    }
    return !std::exchange(is_silent, result == kNoReply) && Conclude(texts, result, silent);
  };
  const auto keep_valid = [&](FactGroup group, const std::string& number, const char* if_invalid,
                              std::string* kept) {
    if (IsValidNumber(number)) {
      *kept = number;
    } else {
      facts.readings[static_cast<size_t>(group)] = {std::nullopt, if_invalid};
      Fail(if_invalid, silent);
    }
  };
  std::string number;
  if (read(FactGroup::kSerialNumber, kReadSerialNumber, GetSerialNumber, &number)) {
    keep_valid(FactGroup::kSerialNumber, number, "SN invalid after validation",
               &facts.serial_number);
  }
  if (read(FactGroup::kPartNumber, kReadPartNumber, GetPartNumber, &number)) {
    keep_valid(FactGroup::kPartNumber, number, "PN invalid after validation", &facts.part_number);
  }
  read(FactGroup::kVersions, kReadVersions, GetVersions, &facts.versions);
  read(FactGroup::kPblVersion, kReadPblVersion, GetPblVersion, &facts.pbl_version);
  DeviceStatus status;
  if (read(FactGroup::kStatus, kReadStatus, GetStatus, &status)) {
    facts.status = status;
  }
  return facts;
}

int32_t Maintenance::RestartKiva() {
  int32_t result = kNotConnected;
  if (Run(kRestartKiva, [&](CommandSender& lidar) { return result = RestartDevice(lidar); })) {
    report_.LogLine("Kiva restart command sent", LogType::kInfo);
  }
  return result;
}

int32_t Maintenance::Restart(const ConfigParser& table, std::string* failure) {
  return Send(kTableRestart, table, failure);
}

int32_t Maintenance::Reset(const ConfigParser& table) { return Send(kTableReset, table, nullptr); }

int32_t Maintenance::Send(const TableCommandTexts& texts, const ConfigParser& table,
                          std::string* failure) {
  const VarInfo* const var = table.FindByName(texts.var_name);
  const char* obstacle = link_.state.Obstacle(link_.sender);
  if (obstacle == nullptr && (var == nullptr || var->set_cmd.empty())) {
    obstacle = texts.missing;
  }
  if (obstacle != nullptr) {
    if (failure != nullptr) {
      *failure = obstacle;
    } else {
      report_.Error(obstacle);
    }
    return kNotConnected;
  }

  std::string why;
  int32_t reason = kNotConnected;
  try {
    if (!var->write->obstacle.empty()) {
      throw std::runtime_error(var->write->obstacle);
    }
    const WireCommand command = WireCommandOf(var->set_cmd, var->write->fixed_payload);
    std::vector<uint8_t> reply;
    if (link_.sender->QueryCommand(command.payload, reply, command.code, false, &reason) == 0) {
      if (failure == nullptr) {
        report_.Success(texts.success);
      }
      return 0;
    }
    why = CmxClient::ErrorText(reason);
  } catch (const std::exception& e) {  // the table is wrong here
    why = e.what();
  }
  Fail(texts.failure + why, failure != nullptr, LostAnswerRemedy(reason));
  if (failure != nullptr) {
    *failure = why;
  }
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
  const bool is_setting = *texts.success != '\0';
  if (result != 0) {
    Fail(texts.failure + CmxClient::ErrorText(result), silent,
         is_setting ? LostAnswerRemedy(result) : "");
  } else if (is_setting) {
    report_.Success(texts.success);
  }
  return result == 0;
}

void Maintenance::Fail(const std::string& text, bool silent, const std::string& remedy) {
  if (!silent) {
    report_.ErrorWithRemedy(text, remedy);
  }
  report_.LogLine(text, LogType::kError);
}
