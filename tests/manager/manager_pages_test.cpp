#include <QSignalSpy>

#include "manager_fixture.h"

namespace {

class ManagerPagesTest : public ManagerFixture {};

TEST_F(ManagerPagesTest, ThePeriodicRefreshShowsNewValuesAndLeavesEditsAlone) {
  const VirtualLidarProcess lidar;
  ASSERT_TRUE(ConnectTo(lidar));
  OpenPage("Scan");
  Edit("Minimum Distance", "45");
  // Written past the page, so that only the refresh can bring it: the maximum is 150 m.
  manager_->SendCommand("0x12", "02 58 00 00 01 00 00 02 D0 03 00 14 00 96 00 00 01 00");
  ASSERT_TRUE(WaitFor([this] { return Text("Maximum Distance") == "150"; }));
  EXPECT_EQ(Text("Minimum Distance"), "45");
  EXPECT_TRUE(Edited("Minimum Distance"));
}

TEST_F(ManagerPagesTest, ASaveWithoutAnAnswerIsReadAgainInTheBackground) {
  const VirtualLidarProcess lidar({"--fault", "drop@0x12"});
  ASSERT_TRUE(ConnectTo(lidar));
  OpenPage("Scan");
  Edit("Minimum Distance", "45");
  Save("Scan");
  EXPECT_EQ(TakeErrors().filter("Set Failed: 0x12 SET Minimum Distance, ").size(), 1);
  EXPECT_EQ(Text("Minimum Distance"), "20") << "the lidar was not asked again";
  // It took the value all the same. The periodic refresh is announced by another signal.
  QSignalSpy shown(manager_.get(), &TevronManager::myMapChanged);
  ASSERT_TRUE(WaitFor([&shown] { return shown.count() > 0; }));
  EXPECT_EQ(Text("Minimum Distance"), "45");
}

TEST_F(ManagerPagesTest, NothingIsReadDuringADownload) {
  const VirtualLidarProcess lidar;
  ASSERT_TRUE(ConnectTo(lidar));
  manager_->SetLogBytesFlowStatus(true);
  manager_->setIsDownloadLog(true);
  manager_->GetLidarModuleInfo(0);
  EXPECT_FALSE(manager_->UpdateSingleVarInfo("PN"));
  manager_->Run(0);
  EXPECT_EQ(QStringList("Please wait for the operation log to download completely"), TakeErrors());
  manager_->setIsDownloadLog(false);
  EXPECT_TRUE(manager_->UpdateSingleVarInfo("PN"));
  // The link check stays out of the log; the read is the only command in it.
  EXPECT_TRUE(manager_->CheckLidarConnection());
  ASSERT_TRUE(WaitFor([this] { return !LogLines("BYTESFLOW: RECV: ").isEmpty(); }));
  EXPECT_EQ(LogLines("BYTESFLOW: SEND: ").size(), 1);
  EXPECT_EQ(manager_->commandLogCnt(), 1);
}

TEST_F(ManagerPagesTest, AModelLeavesNothingOfTheOneBeforeAlsoWithoutATable) {
  Edit("Minimum Distance", "45");
  manager_->SetModulePV("Kraken");
  EXPECT_EQ(manager_->getPVNowName(), "");
  manager_->SetModulePV("Lumo");
  EXPECT_EQ(manager_->getPVNowName(), "Lumo");
  EXPECT_EQ(manager_->connectType(), 1);
  EXPECT_EQ(manager_->getSetMapSize(), 0);
  EXPECT_EQ(manager_->level1List().size(), manager_->myMap().size());
  EXPECT_FALSE(manager_->CheckVarExistsInConfigFileByName("Minimum Distance"));

  manager_->InitConfigFileParser("Kraken");
  EXPECT_EQ(TakeErrors().filter("No variables could be loaded for the model Kraken.").size(), 1);
  EXPECT_TRUE(manager_->level1List().isEmpty());
  manager_->SetText(1, 0, 0, 0, "5");
  manager_->Run(0);
  manager_->GetLidarModuleInfo(0);
  EXPECT_TRUE(TakeErrors().isEmpty());
  manager_->InitConfigFileParser();
  EXPECT_TRUE(manager_->CheckVarExistsInConfigFileByName("Minimum Distance"));
}

}  // namespace
