#include "upgrade/version_reading.h"

#include "CmxClient/device_commands.h"
#include "maintenance/device_facts.h"
#include "pages/page_reader.h"
#include "session/quiet_report.h"

namespace {

std::string ReadVariable(kavel::lidar::CommandSender& sender, const LidarModel& model,
                         UserReport& report) {
  const VarInfo* var = model.table->FindByName("SWVER_YMD");
  if (var == nullptr) {
    return "";
  }
  LinkState state;  // an upgrade reads while nobody else may
  state.connected = true;
  ReadFailures failures;
  PageReader reader(sender, *model.table, state, failures, report);
  return reader.GetInfoFromLidar(*var) ? model.table->ValueOf(*var).text : "";
}

}  // namespace

std::string ReadRunningVersion(kavel::lidar::CommandSender& sender, const LidarModel& model,
                               const std::shared_ptr<UserReport>& report) {
  if (model.connect_type == kNetworkLink) {
    QuietReport quiet(report);
    return ReadVariable(sender, model, quiet);
  }
  kavel::lidar::DeviceVersions versions;
  return GetVersions(sender, &versions) == 0 ? VersionText(versions, model.family) : "";
}
