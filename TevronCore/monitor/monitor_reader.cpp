#include "monitor/monitor_reader.h"

#include <vector>

#include "pages/page_reader.h"

std::string MonitorReader::Read(const LidarModel& model, const char* caller) const {
  const std::shared_ptr<kavel::lidar::CommandSender> sender = sender_.Get();
  if (sender == nullptr || !sender->IsOpen() || !state_.connected ||
      model.connect_type != kNetworkLink) {
    return "the lidar is not connected over the network";
  }
  if (!state_.MayRead()) {
    return state_.upgrading ? "the lidar is being upgraded" : "a log is being downloaded";
  }
  const std::vector<const VarInfo*> vars = model.pages.VariablesOf(model.pages.monitor_page());
  PageReader reader(*sender, *model.table, state_, failures_, *report_);
  const size_t failed = reader.Read(vars, caller).failed.size();
  return failed == 0 ? "" : std::to_string(failed) + " of its values could not be read";
}
