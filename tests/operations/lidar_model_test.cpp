#include "operations/lidar_model.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "model_fixture.h"

namespace {

TEST(LidarModel, IsNamedAfterItsTableAndReachedAccordingly) {
  EXPECT_EQ(kSerialPair, ConnectTypeOf("Lumo"));
  EXPECT_EQ(kSerialCmx, ConnectTypeOf("Lumo-CMX"));
  EXPECT_EQ(kSerialCmx, ConnectTypeOf("Kiva-CMX"));
  EXPECT_EQ(kNetworkLink, ConnectTypeOf("Orca"));
  EXPECT_EQ(kNetworkLink, ConnectTypeOf("lumo"));

  const ModelFixture fixture("1,1,0x01,,,PN,0,string,A,,,,,Device,4,0,,,\n");
  EXPECT_EQ("Model", fixture.model->name);
  EXPECT_EQ(1, fixture.model->pages.page_count());
  EXPECT_TRUE(fixture.model->faults.empty());
}

TEST(LidarModel, WithoutAUsableTableHasNoVariablesAndSaysWhy) {
  const TableFile no_columns("GroupID,Index\n1,1\n");
  const auto without_columns = LoadLidarModel(no_columns.path());
  EXPECT_EQ(0, without_columns->pages.page_count());
  ASSERT_FALSE(without_columns->faults.empty());
  EXPECT_NE(std::string::npos, without_columns->faults[0].find("Can't find a column named "));
  EXPECT_FALSE(LoadLidarModel("/nowhere/Orca.csv")->faults.empty());
}

TEST(LidarModel, TakesItsFeaturesFromTheFolderAbove) {
  const TableFile root("", "unused");
  const std::string folder = root.folder() + "/varID";
  std::filesystem::create_directory(folder);
  std::ofstream(folder + "/Osprey.csv") << kTableHeader;
  std::ofstream(root.folder() + "/feature_config.csv")
      << "Model,EnableCmxClientHostPortUi,StaleInputWait\nOsprey,1,trouble\n";
  const auto model = LoadLidarModel(folder + "/Osprey.csv");
  EXPECT_EQ(root.folder(), model->config_folder);
  EXPECT_TRUE(model->host_port_enabled);
  EXPECT_EQ(kavel::lidar::StaleInput::kAfterTrouble, model->stale_input);
}

}  // namespace
