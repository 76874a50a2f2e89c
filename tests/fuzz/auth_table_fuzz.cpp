#include <stdexcept>

#include "auth/auth_config.h"
#include "auth/auth_rules.h"
#include "fuzz/fuzz_targets.h"
#include "variables/fault_list.h"
#include "variables/table_rules.h"

namespace {

bool HasFault(const TableFaults& faults) {
  return std::any_of(faults.begin(), faults.end(), [](const TableFault& fault) {
    return fault.severity == TableFault::Severity::kFault;
  });
}

}  // namespace

void FuzzAuthTable(FuzzInput input) {
  static const ConfigParser model(LoadModelTable(ConfigFolder(TEVRON_SOURCE "/Config"), "Osprey"));
  FuzzFolder().Write("auth/auth_config.csv", input.RestText());
  const ConfigFolder folder(FuzzFolder().path() + "/auth");
  TableFaults of_the_files;
  CheckAuthFiles(folder, &of_the_files);
  Require(of_the_files.size() <= 2 * FaultList::kMost, "what is told of a file is bounded");
  for (const char* name : {"Osprey", "Kiva-CMX", ""}) {
    TableFaults faults;
    CheckAuth(folder, name, SerialFamily::kNone, model, &faults);
    try {
      const AuthConfig config = AuthConfigOf(folder, name);
      Require(config.enabled || config.protected_cmds.empty(),
              "a row that is off protects nothing");
      Require(!config.enabled || config.algorithm_id >= 0, "a row that is on has an algorithm");
    } catch (const AuthConfigError& error) {
      Require(!error.place().empty() && error.text().find(error.what()) != std::string::npos,
              "a row that cannot be used has its place");
      Require(HasFault(faults) || HasFault(of_the_files), "what stops a connection is a fault");
    } catch (const std::runtime_error&) {
      Require(HasFault(faults) || HasFault(of_the_files), "a table that cannot be read is a fault");
    }
  }
}
