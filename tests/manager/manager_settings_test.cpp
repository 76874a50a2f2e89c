// Settings files through the manager, with the virtual lidar as a process at the other end.

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <algorithm>
#include <map>

#include "lidar_settings.h"
#include "manager_fixture.h"
#include "support/upgrade_bench.h"

namespace {

class ManagerSettingsTest : public ManagerFixture {
 protected:
  LidarSettings& Settings() { return manager_->Settings(); }
  bool Ends() {
    return WaitFor([this] { return Settings().Now().task == SettingsTask::kNone; });
  }
  std::string Outcome() { return Settings().Now().outcome; }
  QString FileCalled(const QString& name) const { return folder_.filePath(name); }

  QString Saved() {
    QString file = FileCalled("kept.tevron.json");
    Settings().Save(file);
    EXPECT_TRUE(Ends());
    return file;
  }
  // A copy of the file with other texts.
  QString With(const QString& file, const std::map<std::string, const char*>& texts) const {
    std::string error;
    SettingsFile settings = LoadSettings(file, &error).value();
    for (SavedValue& value : settings.values) {
      if (const auto other = texts.find(value.name); other != texts.end()) {
        value.text = other->second;
      }
    }
    QString copy = FileCalled("other.tevron.json");
    EXPECT_EQ(SaveSettings(copy, settings), "");
    return copy;
  }
  const ComparedRow& Row(const std::string& name) {
    const std::vector<ComparedRow>& rows = Settings().comparison()->rows;
    return *std::find_if(rows.begin(), rows.end(),
                         [&](const ComparedRow& row) { return row.diff.name == name; });
  }

  const QTemporaryDir folder_;
};

TEST_F(ManagerSettingsTest, SavesComparesAndAppliesBesideWhatTheUserTypes) {
  const VirtualLidarProcess lidar;
  ASSERT_TRUE(ConnectTo(lidar));
  const QString file = Saved();
  ASSERT_TRUE(QFileInfo::exists(file)) << Outcome();
  OpenPage("Scan");
  const QString held = lidar.Held("Range Offset");
  Edit("Range Offset", "2");
  const QString other =
      With(file,
           {{"Maximum Distance", "78"}, {"IP Address", "127.0.0.9"}, {"Minimum Distance", "9000"}});
  Settings().CompareWithLidar(other);
  ASSERT_TRUE(Ends());
  EXPECT_EQ(Row("Maximum Distance").choice, RowChoice::kOffered);
  EXPECT_EQ(Row("Maximum Distance").diff.right, "200");
  EXPECT_EQ(Row("IP Address").choice, RowChoice::kOnDemand);
  EXPECT_EQ(Row("Minimum Distance").choice, RowChoice::kNever) << "out of its range";
  EXPECT_NE(Row("Minimum Distance").reason, "");
  EXPECT_EQ(Row("Range Offset").diff.kind, DiffKind::kEqual) << "what is typed is not the lidar's";

  Settings().Apply({"Maximum Distance", "IP Address"});
  EXPECT_EQ(manager_->Reset(), -1);
  EXPECT_EQ(TakeErrors(), QStringList(LinkState::kAppliesSettings));
  ASSERT_TRUE(Ends());
  EXPECT_EQ(Outcome(), "Applied: 2 written.");
  EXPECT_EQ(lidar.Held("Maximum Distance"), "78");
  EXPECT_EQ(Text("Maximum Distance"), "78");
  EXPECT_EQ(manager_->LinkNow().next_address, "127.0.0.9");
  EXPECT_EQ(lidar.Held("Range Offset"), held);
  EXPECT_EQ(Text("Range Offset"), "2");
  EXPECT_TRUE(Edited("Range Offset"));
}

TEST_F(ManagerSettingsTest, SaysWhatWasDoneWhenItIsBrokenOff) {
  auto lidar = std::make_unique<VirtualLidarProcess>();
  ASSERT_TRUE(ConnectTo(*lidar));
  const QString other = With(Saved(), {{"Maximum Distance", "78"}});
  manager_->Stop();
  lidar = std::make_unique<VirtualLidarProcess>(QStringList{"--fault", "delay=100"});
  ASSERT_TRUE(ConnectTo(*lidar));

  Settings().CompareWithLidar(other);
  ASSERT_TRUE(WaitFor([this] { return Settings().Now().done > 2; }));
  Settings().Cancel();
  ASSERT_TRUE(Ends());
  EXPECT_EQ(Outcome(), "The lidar could not be compared: cancelled.");
  EXPECT_EQ(TakeErrors(), QStringList()) << "whoever cancels knows it";

  Settings().CompareWithLidar(other);
  ASSERT_TRUE(Ends());
  Settings().Apply({"Maximum Distance"});
  lidar->Kill();
  ASSERT_TRUE(Ends());
  EXPECT_TRUE(Settings().Now().failed);
  EXPECT_EQ(Outcome().rfind("Broken off, ", 0), 0) << Outcome();
  EXPECT_EQ(*Row("Maximum Distance").outcome, ApplyResult::Outcome::kSkipped);
  EXPECT_NE(Row("Maximum Distance").reason, "");

  VirtualLidarProcess silent;
  manager_->Stop();
  ASSERT_TRUE(ConnectTo(silent));
  TakeErrors();
  const QString never = FileCalled("never.tevron.json");
  silent.Freeze();
  Settings().Save(never);
  manager_.reset();
  EXPECT_FALSE(QFileInfo::exists(never)) << "nobody waits for a silent lidar";
}

TEST_F(ManagerSettingsTest, KeepsASnapshotBeforeAnUpgradeAndHasNoneOfAModelWithoutPages) {
  const Firmware firmware;
  const VirtualLidarProcess lidar;
  ASSERT_TRUE(ConnectTo(lidar));
  const size_t kept = Snapshots().Of(lidar.Held("SN").toStdString()).size();
  manager_->UpgradeLidar(firmware.For("Orca", "2.8.0"), 0, 0, 0);
  ASSERT_TRUE(WaitFor([this] { return manager_->upgradeProgress() > 0; }));
  const std::vector<Snapshot> snapshots = Snapshots().Of(lidar.Held("SN").toStdString());
  ASSERT_EQ(snapshots.size(), kept + 1);
  EXPECT_EQ(snapshots.front().reason, SnapshotReason::kUpgrade);
  manager_->Stop();

  manager_->InitConfigFileParser("Kiva-CMX");
  TakeErrors();
  Settings().Save(FileCalled("none.tevron.json"));
  EXPECT_EQ(TakeErrors(),
            QStringList("There are no settings to be saved or applied: a Kiva-CMX has "
                        "no pages."));
}

}  // namespace
