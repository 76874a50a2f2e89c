#include "settings_files/snapshots.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "support/test_folder.h"

namespace {

class SnapshotsTest : public testing::Test {
 protected:
  SettingsFile Lidar(const std::string& serial_number, const std::string& model = "Orca") {
    SettingsFile file;
    file.model = model;
    file.serial_number = serial_number;
    file.program = std::to_string(++count_);
    return file;
  }
  /// Which of the files that Lidar made it is.
  static std::string Number(const Snapshot& snapshot) {
    std::string error;
    const std::optional<SettingsFile> file = LoadSettings(snapshot.path, &error);
    return file ? file->program : error;
  }

  const TestFolder folder_;
  const QString path_ = QString::fromStdString(folder_.path()) + "/kept";
  const Snapshots snapshots_{path_};
  int count_ = 0;
};

TEST_F(SnapshotsTest, TheNewestOfEachLidarAreKept) {
  EXPECT_TRUE(snapshots_.All().empty());
  EXPECT_EQ(snapshots_.Keep(Lidar("B"), SnapshotReason::kReset), "");
  for (int i = 0; i < Snapshots::kKept + 2; ++i) {
    EXPECT_EQ(snapshots_.Keep(Lidar("A"), SnapshotReason::kUpgrade), "");
  }
  EXPECT_EQ(snapshots_.Keep(Lidar("B", "Lumo_x/y"), SnapshotReason::kApply), "");
  folder_.Write("kept/A/notes.tevron.json", "{}");

  const std::vector<Snapshot> of_a = snapshots_.Of("A");
  ASSERT_EQ(of_a.size(), static_cast<size_t>(Snapshots::kKept));
  EXPECT_EQ(Number(of_a.front()) + " " + Number(of_a.back()), "53 4");
  const std::vector<Snapshot> all = snapshots_.All();
  ASSERT_EQ(all.size(), of_a.size() + 2);
  EXPECT_TRUE(std::is_sorted(all.begin(), all.end(), [](const auto& one, const auto& other) {
    return one.time > other.time;
  }));
  const Snapshot newest = snapshots_.Of("B").front();
  EXPECT_EQ(Number(newest), "54");
  EXPECT_EQ(newest.model + " " + newest.serial_number + " " + TextOf(newest.reason),
            "Lumo_x/y B before apply");
  EXPECT_LT(std::abs(newest.time.secsTo(QDateTime::currentDateTime())), 600);
  EXPECT_EQ(TextOf(all.back().reason), std::string("before reset"));
  EXPECT_TRUE(QFile::exists(path_ + "/A/notes.tevron.json"));
}

TEST_F(SnapshotsTest, NoSerialNumberLeavesTheFolder) {
  std::vector<std::string> hostile = {
      "", ".", "..", "../../x", "/etc/passwd", "a\\b", "a/b", "a%2Fb", "CON\n", "~", "ü"};
  hostile.emplace_back(1, '\0');
  hostile.emplace_back(300, '/');
  hostile.emplace_back(300, 'x');
  for (const std::string& serial_number : hostile) {
    EXPECT_EQ(snapshots_.Keep(Lidar(serial_number), SnapshotReason::kApply), "");
    const std::vector<Snapshot> kept = snapshots_.Of(serial_number);
    ASSERT_EQ(kept.size(), 1U) << serial_number << " shares a folder";
    if (serial_number.size() < 300) {
      EXPECT_EQ(kept[0].serial_number, serial_number);
    }
  }
  EXPECT_EQ(QDir(path_).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden).size(),
            static_cast<int>(std::size(hostile)));
  EXPECT_EQ(QDir(path_ + "/..").entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(), 1);
}

TEST_F(SnapshotsTest, AFolderThatTakesNothingIsAnError) {
  folder_.Write("kept", "a file");
  EXPECT_EQ(snapshots_.Keep(Lidar("A"), SnapshotReason::kApply),
            path_.toStdString() + "/A: Not a directory; choose another place");
  EXPECT_TRUE(snapshots_.All().empty());
  EXPECT_NE(Snapshots("/proc").Keep(Lidar("A"), SnapshotReason::kApply), "");
}

}  // namespace
