#include <stdexcept>

#include "fuzz/fuzz_targets.h"
#include "variables/fault_list.h"
#include "variables/feature_config.h"

void FuzzFeatureTable(FuzzInput input) {
  const std::string path = FuzzFolder().Write("features/feature_config.csv", input.RestText());
  const ConfigFolder folder(FuzzFolder().path() + "/features");
  TableFaults faults;
  CheckFeatures(folder, &faults);
  Require(faults.size() <= FaultList::kMost + 2, "what is told of a file is bounded");
  for (const char* model : {"Orca", "Lumo", "Kiva-CMX", ""}) {
    TableFaults of_the_model;
    const ModelFeatures features = LoadFeatures(folder, model, &of_the_model);
    Require(features.connect_type >= kNetworkLink && features.connect_type <= kSerialCmx,
            "a model is reached in one of three ways");
    Require(of_the_model.size() <= FaultList::kMost + 2, "what is told of a model is bounded");
    try {
      const bool enabled = IsHostPortUiEnabled(path, model);
      Require(enabled == features.host_port_enabled, "both say the same of the host port");
    } catch (const std::runtime_error&) {
      Require(!faults.empty(), "a missing column is told");
    }
  }
}
