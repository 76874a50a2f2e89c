// Settings files in the real scene: saved, compared and applied by clicks and keys, with the
// virtual lidar as a process at the other end of the wire.

#include <gtest/gtest.h>

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>

#include "app/screen.h"
#include "support/virtual_lidar_process.h"

namespace {

const char kScanTab[] = "tab2";
const char kMaximumDistance[] = "field_2_2_2";

QFileDialog* OpenDialog() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    auto* const dialog = qobject_cast<QFileDialog*>(widget);
    if (dialog != nullptr && dialog->isVisible()) {
      return dialog;
    }
  }
  return nullptr;
}

class SettingsScreenTest : public testing::Test {
 protected:
  // By the menu, and the name typed into the dialog.
  void Start(const QString& entry) {
    screen_.Click("settingsButton");
    ASSERT_TRUE(WaitFor([&] { return screen_.Find("settings_" + entry) != nullptr; }));
    screen_.Click("settings_" + entry);
  }
  void Choose(const QString& file) {
    ASSERT_TRUE(WaitFor([] { return OpenDialog() != nullptr; }));
    QFileDialog* const dialog = OpenDialog();
    auto* const name = dialog->findChild<QLineEdit*>("fileNameEdit");
    name->setText(file);
    QTest::keyClick(name, Qt::Key_Return);
    ASSERT_TRUE(WaitFor([dialog] { return OpenDialog() != dialog; }));
  }
  void Save(const QString& file) {
    Start("save");
    Choose(file);
    ASSERT_TRUE(screen_.WaitForNotice(QFileInfo(file).fileName()))
        << screen_.BoxMessage().toStdString();
    screen_.Click("noticeClose");
  }
  void Compare(const QString& entry, const QString& file) {
    Start(entry);
    Choose(file);
    ASSERT_TRUE(WaitFor([&] { return screen_.Find("settingsPanel") != nullptr; }))
        << screen_.BoxMessage().toStdString();
  }
  // Changes one value on the page, and saves it.
  void Set(const QString& text) {
    screen_.Click(kScanTab);
    screen_.TypeInto(kMaximumDistance, text);
    screen_.Click("saveButton");
    ASSERT_TRUE(WaitFor([&] { return lidar_.Held("Maximum Distance") == text; }));
  }
  QString FileCalled(const QString& name) const { return folder_.filePath(name); }

  // Shows what a bundle would hold, and saves it.
  void SaveBundle(const QString& file) {
    Start("bundle");
    ASSERT_TRUE(WaitFor([&] { return screen_.Find("bundleEntry_0") != nullptr; }));
    screen_.Click("dialogAccept");
    Choose(file);
    ASSERT_TRUE(WaitFor([&] { return screen_.Find("bundleEntry_0") == nullptr; }));
    ASSERT_TRUE(screen_.WaitForNotice("support bundle is saved"))
        << screen_.BoxMessage().toStdString();
    screen_.Click("noticeClose");
  }

  const QTemporaryDir folder_;
  Screen screen_;
  VirtualLidarProcess lidar_;
};

TEST_F(SettingsScreenTest, SavesComparesAndApplies) {
  const QString file = FileCalled("kept.tevron.json");
  ASSERT_TRUE(screen_.ConnectTo(lidar_.port())) << screen_.LogText().toStdString();
  Save(file);
  Compare("compare", file);
  EXPECT_EQ(screen_.Text("settingsCounts"), "All settings are the same.");
  EXPECT_FALSE(screen_.Find("settingsApply")->isEnabled());
  screen_.Key(Qt::Key_Escape);
  EXPECT_EQ(screen_.Find("settingsPanel"), nullptr);

  Set("78");
  Compare("apply", file);
  EXPECT_EQ(screen_.Text("settingsCounts"), "1 differs");
  EXPECT_EQ(screen_.Value("settingsRow_0", "leftText"), "200");
  EXPECT_EQ(screen_.Value("settingsRow_0", "rightText"), "78");
  EXPECT_EQ(screen_.Text("settingsApply"), "Apply 1");
  screen_.Find("settingsRows")->forceActiveFocus(Qt::TabFocusReason);
  screen_.Key(Qt::Key_Space);
  EXPECT_FALSE(screen_.Find("settingsApply")->isEnabled());
  screen_.Key(Qt::Key_Space);
  screen_.Click("settingsApply");
  EXPECT_TRUE(WaitFor([&] { return screen_.Text("settingsOutcome") == "Applied: 1 written."; }))
      << screen_.Text("settingsOutcome").toStdString();
  EXPECT_EQ(screen_.Value("settingsRow_0", "outcome"), "written and read back");
  EXPECT_EQ(lidar_.Held("Maximum Distance"), "200");
  screen_.Click(kScanTab);
  EXPECT_EQ(screen_.Text(kMaximumDistance), "200") << "the page shows what the lidar holds since";

  Start("snapshots");
  ASSERT_TRUE(WaitFor([&] { return screen_.Find("snapshot_0") != nullptr; }));
  screen_.Click("snapshotCompare");
  ASSERT_TRUE(WaitFor([&] { return screen_.Text("settingsCounts") == "1 differs"; }));
  EXPECT_EQ(screen_.Value("settingsRow_0", "leftText"), "78") << "as it was before";
}

TEST_F(SettingsScreenTest, SavesABundleWithWhatTheLidarHoldsWhereThereIsOne) {
  SaveBundle(FileCalled("without.zip"));
  ASSERT_TRUE(screen_.ConnectTo(lidar_.port())) << screen_.LogText().toStdString();
  SaveBundle(FileCalled("with.zip"));
  EXPECT_GT(QFileInfo(FileCalled("without.zip")).size(), 0);
  EXPECT_GT(QFileInfo(FileCalled("with.zip")).size(),
            QFileInfo(FileCalled("without.zip")).size() + 1000);
}

}  // namespace
