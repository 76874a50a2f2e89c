#pragma once

#include <QString>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "CmxClient/command_sender.h"
#include "CmxClient/device_commands.h"
#include "maintenance/device_facts.h"
#include "session/link_state.h"
#include "session/user_report.h"
#include "variables/config_parser.h"

struct MaintenanceTexts;
struct TableCommandTexts;

/// The lidar that maintenance is done on.
struct MaintenanceLink {
  kavel::lidar::CommandSender* sender;  ///< null without a connection
  const LinkState& state;
  ConnectType connect_type;
};

/// What is read from and set on a lidar besides its variables, one member an operation: a check
/// whether it is possible now, one exchange, a report in fixed words.
///
/// A failure goes to the error box and, when the lidar or the link caused it, to the log as well;
/// nothing is tried twice. `silent` keeps it out of the error box. The thread that calls waits for
/// the exchange. What `link` and `report` point to has to outlive the object.
class Maintenance {
 public:
  Maintenance(const MaintenanceLink& link, UserReport& report) : link_(link), report_(report) {}

  /// The point-cloud baud rate in bits per second; nothing on failure.
  std::optional<uint32_t> ReadBaudRate();
  /// Sets it from decimal text: the new rate, or nothing on failure.
  std::optional<uint32_t> WriteBaudRate(const QString& text);

  /// Where the point cloud is sent; nothing on failure.
  std::optional<kavel::lidar::Destination> ReadDestination(bool silent = false);
  bool WriteDestination(const QString& ip, int port);

  /// Nothing on failure.
  std::optional<kavel::lidar::NetConfig> ReadNet(bool silent = false);
  /// The identifier counts only with the flag. A lidar that drops the link instead of answering has
  /// taken the settings: that is a success.
  bool WriteNet(const QString& ip, const QString& mask, const QString& gateway, bool vlan,
                int vlan_id);

  bool WriteReturnMode(int return_mode);
  bool WriteSpinRate(int spin_rate_rpm);
  bool WriteStandby(int standby);  ///< 0 works, 1 rests
  /// Indices 0 to 5 and 0 to 3.
  bool WriteImuRange(int angular_range_index, int accel_range_index);

  /// What each safety function reports; empty on failure.
  std::vector<kavel::lidar::SafetyState> ReadFunctionSafety();

  /// What the lidar says about itself. What cannot be read, and a number that is not 1 to 32
  /// printable characters, stays as in `facts`; once the lidar is silent the rest is not asked for.
  DeviceFacts ReadFacts(DeviceFacts facts = {}, bool silent = false);

  /// Restarts a Kiva after an upgrade: 0 when it acknowledged.
  int32_t RestartKiva();

  /// Sends what the table's variable "Restart" or "Reset" sets, over any kind of link: 0 when the
  /// lidar accepted, else the reason (-1 when nothing was sent). With `failure` no box is shown,
  /// and it gets the reason in words.
  int32_t Restart(const ConfigParser& table, std::string* failure = nullptr);
  int32_t Reset(const ConfigParser& table);

 private:
  /// Runs `exchange`, which is handed the sender and gives 0 or the reason of its failure, if the
  /// operation is possible now. True when it was and the lidar did it.
  template <typename Exchange>
  bool Run(const MaintenanceTexts& texts, Exchange exchange, bool silent = false);
  bool IsReady(const MaintenanceTexts& texts, bool silent = false);
  bool Conclude(const MaintenanceTexts& texts, int32_t result, bool silent = false);
  void Fail(const std::string& text, bool silent, const std::string& remedy = "");
  int32_t Send(const TableCommandTexts& texts, const ConfigParser& table, std::string* failure);

  const MaintenanceLink link_;
  UserReport& report_;
};
