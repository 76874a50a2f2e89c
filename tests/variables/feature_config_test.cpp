#include "variables/feature_config.h"

#include <gtest/gtest.h>

#include "variables/model_list.h"
#include "variables/table_file.h"

namespace {

using kavel::lidar::StaleInput;

constexpr char kFeatures[] =
    "StaleInputWait,Model,EnableCmxClientHostPortUi\n"
    "trouble, Orca\t,1\n"
    "always,Osprey, 1 \n"
    " trouble ,Lumo,true\n"
    ",Kiva,11\n";

TEST(FeatureConfig, EnablesTheFieldForTheRowsThatSaySo) {
  const TableFile file(kFeatures);
  EXPECT_TRUE(IsHostPortUiEnabled(file.path(), "Orca"));
  EXPECT_TRUE(IsHostPortUiEnabled(file.path(), "Osprey"));
  EXPECT_FALSE(IsHostPortUiEnabled(file.path(), "Lumo"));
  EXPECT_FALSE(IsHostPortUiEnabled(file.path(), "Kiva"));
  EXPECT_FALSE(IsHostPortUiEnabled(file.path(), "orca"));
  EXPECT_FALSE(IsHostPortUiEnabled(file.path() + ".missing", "Orca"));
}

TEST(FeatureConfig, AMissingColumnStopsTheLookup) {
  const TableFile file("Model,Other\nOrca,1\n");
  try {
    IsHostPortUiEnabled(file.path(), "Orca");
    FAIL();
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "Can't find a column named EnableCmxClientHostPortUi");
  }
  EXPECT_EQ(StaleInputFor(file.path(), "Orca"), StaleInput::kAlways);
}

TEST(FeatureConfig, WaitsAfterTroubleOnlyWhereTheTableSaysSo) {
  const TableFile file(kFeatures);
  EXPECT_EQ(StaleInputFor(file.path(), "Orca"), StaleInput::kAfterTrouble);
  EXPECT_EQ(StaleInputFor(file.path(), "Lumo"), StaleInput::kAfterTrouble);
  EXPECT_EQ(StaleInputFor(file.path(), "Osprey"), StaleInput::kAlways);
  EXPECT_EQ(StaleInputFor(file.path(), "Kiva"), StaleInput::kAlways);
  EXPECT_EQ(StaleInputFor(file.path() + ".missing", "Orca"), StaleInput::kAlways);
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
