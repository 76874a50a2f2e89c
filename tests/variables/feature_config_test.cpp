#include "variables/feature_config.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/table_fixture.h"
#include "variables/model_list.h"

namespace {

using kavel::lidar::StaleInput;

TEST(FeatureConfig, SwitchesOnWhatTheRowOfTheModelSays) {
  const TableFile file(
      "StaleInputWait,Model,EnableCmxClientHostPortUi\n"
      "trouble, Orca\t,1\n"
      "always,Osprey, 1 \n"
      " trouble ,Lumo,true\n"
      ",Kiva,11\n");
  const auto features = [](const std::string& table, const char* model) {
    return std::pair(IsHostPortUiEnabled(table, model), StaleInputFor(table, model));
  };
  EXPECT_EQ(features(file.path(), "Orca"), std::pair(true, StaleInput::kAfterTrouble));
  EXPECT_EQ(features(file.path(), "Osprey"), std::pair(true, StaleInput::kAlways));
  EXPECT_EQ(features(file.path(), "Lumo"), std::pair(false, StaleInput::kAfterTrouble));
  EXPECT_EQ(features(file.path(), "Kiva"), std::pair(false, StaleInput::kAlways));
  EXPECT_EQ(features(file.path(), "orca"), std::pair(false, StaleInput::kAlways));
  EXPECT_EQ(features("missing.csv", "Orca"), std::pair(false, StaleInput::kAlways));
  const TableFile narrow("Model,Other\nOrca,1\n");
  EXPECT_THROW(IsHostPortUiEnabled(narrow.path(), "Orca"), std::runtime_error);
  EXPECT_EQ(StaleInputFor(narrow.path(), "Orca"), StaleInput::kAlways);
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
