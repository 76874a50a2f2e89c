#include "upgrade/version_reading.h"

#include <exception>

#include "CmxClient/device_commands.h"
#include "maintenance/device_facts.h"
#include "pages/page_reader.h"
#include "session/quiet_report.h"

namespace {

RunningFirmware OfNetwork(kavel::lidar::CommandSender& sender, const LidarModel& model,
                          UserReport& report) {
  RunningFirmware running;
  running.version = ReadTextOf("SWVER_YMD", sender, *model.table, report);
  if (!running.version.empty()) {
    running.serial_number = ReadTextOf("SN", sender, *model.table, report);
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
