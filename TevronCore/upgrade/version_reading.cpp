#include "upgrade/version_reading.h"

#include <exception>

#include "CmxClient/device_commands.h"
#include "maintenance/device_facts.h"
#include "pages/page_reader.h"
#include "session/quiet_report.h"

namespace {

std::string ReadVariable(kavel::lidar::CommandSender& sender, const LidarModel& model,
                         const char* name, UserReport& report) {
  const VarInfo* var = model.table->FindByName(name);
  if (var == nullptr) {
    return "";
  }
  LinkState state;  // an upgrade reads while nobody else may
  state.connected = true;
  ReadFailures failures;
  PageReader reader(sender, *model.table, state, failures, report);
  return reader.GetInfoFromLidar(*var) ? model.table->ValueOf(*var).text : "";
}

RunningFirmware OfNetwork(kavel::lidar::CommandSender& sender, const LidarModel& model,
                          UserReport& report) {
  RunningFirmware running;
  running.version = ReadVariable(sender, model, "SWVER_YMD", report);
  if (!running.version.empty()) {
    running.serial_number = ReadVariable(sender, model, "SN", report);
  }
  return running;
}

RunningFirmware OfSerial(kavel::lidar::CommandSender& sender, SerialFamily family) {
  RunningFirmware running;
  kavel::lidar::DeviceVersions versions;
  std::string number;
  if (GetVersions(sender, &versions) == 0) {
    running.version = VersionText(versions, family);
    if (GetSerialNumber(sender, &number) == 0 && kavel::lidar::IsValidNumber(number)) {
      running.serial_number = number;
    }
  }
  return running;
}

}  // namespace

RunningFirmware ReadRunningFirmware(kavel::lidar::CommandSender& sender, const LidarModel& model,
                                    const std::shared_ptr<UserReport>& report) {
  try {
    QuietReport quiet(report);
    return model.connect_type == kNetworkLink ? OfNetwork(sender, model, quiet)
                                              : OfSerial(sender, model.family);
  } catch (const std::exception&) {  // no memory
    return {};
  }
}
