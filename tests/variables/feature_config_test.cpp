#include "variables/feature_config.h"

#include <gtest/gtest.h>

#include "variables/model_list.h"
#include "variables/table_file.h"

namespace {

using kavel::lidar::StaleInput;

TEST(FeatureConfig, SwitchesOnWhatTheRowOfTheModelSays) {
  const TableFile file(
      "StaleInputWait,Model,EnableCmxClientHostPortUi\n"
      "trouble, Orca\t,1\n"
      "always,Osprey, 1 \n"
      " trouble ,Lumo,true\n"
      ",Kiva,11\n");
  struct Case {
    const char* model;
    bool host_port;
    StaleInput stale_input;
  };
  const Case cases[] = {
      {"Orca", true, StaleInput::kAfterTrouble},  {"Osprey", true, StaleInput::kAlways},
      {"Lumo", false, StaleInput::kAfterTrouble}, {"Kiva", false, StaleInput::kAlways},
      {"orca", false, StaleInput::kAlways},
  };
  for (const auto& [model, host_port, stale_input] : cases) {
    EXPECT_EQ(IsHostPortUiEnabled(file.path(), model), host_port) << model;
    EXPECT_EQ(StaleInputFor(file.path(), model), stale_input) << model;
  }
  EXPECT_FALSE(IsHostPortUiEnabled(file.path() + ".missing", "Orca"));
  EXPECT_EQ(StaleInputFor(file.path() + ".missing", "Orca"), StaleInput::kAlways);
}

TEST(FeatureConfig, AMissingColumnStopsTheLookup) {
  const TableFile file("Model,Other\nOrca,1\n");
  EXPECT_THROW(IsHostPortUiEnabled(file.path(), "Orca"), std::runtime_error);
  EXPECT_EQ(StaleInputFor(file.path(), "Orca"), StaleInput::kAlways);
}

TEST(ModelList, ListsTheTablesAndNothingElse) {
  const TableFile file("", "Zeta.csv");
  for (const char* name : {"/Alpha-CMX.csv", "/notes.txt", "/old.csv.bak"}) {
    std::ofstream created(file.folder() + name);
  }
  std::filesystem::create_directory(file.folder() + "/Folder.csv");
  EXPECT_EQ(ListModels(file.folder()), (std::vector<std::string>{"Alpha-CMX", "Zeta"}));
  EXPECT_TRUE(ListModels(file.folder() + "/none").empty());
}

}  // namespace
