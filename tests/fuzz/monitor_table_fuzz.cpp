#include "fuzz/fuzz_targets.h"
#include "fuzz/table_check.h"
#include "variables/monitor_tables.h"
#include "variables/table_rules.h"

void FuzzMonitorTable(FuzzInput input) {
  static const ConfigParser base(LoadModelTable(ConfigFolder(TEVRON_SOURCE "/Config"), "Orca"));
  const std::string path = FuzzFolder().Write("monitor/Monitor_A1.csv", input.RestText());
  TableFaults faults;
  const std::shared_ptr<ConfigParser> both = WithMonitorTable(base, path, &faults);
  Require(both != nullptr || !faults.empty(), "a table that cannot be used has its reason");
  if (both == nullptr) {
    return;
  }
  const std::vector<const VarInfo*>& vars = both->InTableOrder();
  const auto added = vars.begin() + static_cast<std::ptrdiff_t>(base.InTableOrder().size());
  Require(std::all_of(added, vars.end(), [](const VarInfo* var) { return var->write == nullptr; }),
          "what is monitored is never written");
  const PageModel pages(*both);
  DrawableVariables(pages, pages.monitor_page());
  CheckLoadedTable(*both);
}
