#include "startup.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <vector>

#include "app/message_recorder.h"

namespace {

void Put(const QString& folder, const QString& path, const QByteArray& bytes) {
  QDir(folder).mkpath(QFileInfo(path).path());
  QFile file(QDir(folder).filePath(path));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  ASSERT_EQ(file.write(bytes), bytes.size());
}

TEST(ScaleFactor, FollowsTheDesktopOrTheWidth) {
  const struct {
    int w, h, physical_w, physical_h;
    const char* text;
  } screens[] = {
      {1920, 1080, 1920, 1080, "1"},        // nothing to enlarge
      {2560, 1440, 2560, 1440, "1.33333"},  // a wide screen that the desktop leaves alone
      {1366, 768, 1366, 768, "1"},          // never smaller than designed
      {1280, 720, 1920, 1080, "1.2"},       // a desktop that enlarges by 1.5
      {3072, 1728, 3840, 2160, "1.6"},      // exactly 1.25 still goes by the width
      {1000, 1000, 2000, 1300, "1.04"},     // the smaller of the two quotients counts
      {1000, 1000, 1300, 2000, "1.04"},    {3840, 2160, 1920, 1080, "2"},  // a desktop that shrinks
      {1920, 0, 1920, 1080, "1"},  // a screen without a size
      {2560, 1440, -1, 1440, "1"},
  };
  const QByteArray before = qgetenv("QT_SCALE_FACTOR");
  for (const auto& screen : screens) {
    ApplyScaleFactor({screen.w, screen.h, screen.physical_w, screen.physical_h});
    EXPECT_EQ(qgetenv("QT_SCALE_FACTOR"), screen.text) << screen.w << "x" << screen.h;
  }
  qputenv("QT_SCALE_FACTOR", before);
}

TEST(Palette, IsAsDarkForADisabledControlAndLeavesTheOtherRolesAlone) {
  QApplication::setPalette(QPalette());  // whatever another test has set
  const QPalette palette = ApplicationPalette();
  for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
    EXPECT_EQ(palette.color(group, QPalette::PlaceholderText), QColor("#eeeeee"));
    for (const auto role : {QPalette::Shadow, QPalette::Link, QPalette::ToolTipText}) {
      EXPECT_EQ(palette.brush(group, role), QPalette().brush(group, role)) << "role " << role;
    }
  }
}

TEST(InstallRoot, IsTheFirstFolderThatHoldsTheFontOrElseTheParent) {
  const struct {
    bool font_in_parent, font_beside_program, root_is_parent;
    int warnings;
  } cases[] = {{true, false, true, 0},
               {false, true, false, 0},
               {true, true, true, 0},
               {false, false, true, 1}};
  for (const auto& one : cases) {
    const QTemporaryDir folder;
    const QString parent = QDir(folder.path()).canonicalPath();
    const QString exe_dir = parent + QStringLiteral("/bin");
    ASSERT_TRUE(QDir(parent).mkpath(exe_dir));
    if (one.font_in_parent) {
      Put(parent, "fonts/Roboto-Regular-14.ttf", "font");
    }
    if (one.font_beside_program) {
      Put(exe_dir, "fonts/Roboto-Regular-14.ttf", "font");
    }
    const MessageRecorder messages;
    EXPECT_EQ(ResolveInstallRoot(exe_dir), one.root_is_parent ? parent : exe_dir);
    ASSERT_EQ(messages.warnings().size(), one.warnings);
    if (one.warnings == 0) {
      continue;
    }
    // The two bytes of the separator are no UTF-8, so the logger shows each as a replacement.
    const QString separator(2, QChar(QChar::ReplacementCharacter));
    EXPECT_EQ(messages.warnings().first(),
              QStringLiteral("[Tevron] install root heuristic: missing fonts/Roboto-Regular-14.ttf "
                             "in \"%1\" and \"%2\" %3 using parent of exe dir: \"%2\"")
                  .arg(exe_dir, parent, separator));
  }
}

TEST(ApplicationData, GivesTheInterfaceItsFontAndItsIconOrSaysWhyNot) {
  const QTemporaryDir folder;
  const QString path = folder.path();
  Put(path, "bad.ttf", "this is no font");
  const MessageRecorder messages;
  EXPECT_EQ(LoadApplicationFont(path, "Bold"), -1) << "a folder is no file";
  EXPECT_EQ(LoadApplicationFont(path + "/bad.ttf", "Bold"), -1);
  EXPECT_EQ(ApplicationFont(TEVRON_TEST_ROOT).family(), "Roboto");
  EXPECT_FALSE(ApplicationIcon(TEVRON_TEST_ROOT).pixmap(64, 64).isNull());
  EXPECT_EQ(messages.warnings(),
            QStringList({"[Tevron] Font file missing: Bold absolutePath: \"" + path + '"',
                         "[Tevron] addApplicationFont failed: Bold absolutePath: \"" + path +
                             "/bad.ttf\" id: -1"}));
}

TEST(ModulePv, TakesTheFirstMatchingArgumentAfterTheProgram) {
  const struct {
    std::vector<std::string> arguments;
    QString model;
  } cases[] = {
      {{"tevron", "-modulePV=Osprey"}, "Osprey"},
      {{"tevron", "-x", "-modulePV=Osprey", "-modulePV=Orca"}, "Osprey"},
      {{"tevron", "-modulePV=", "-modulePV=Orca"}, ""},
      {{"tevron", "-modulePV=a=b c"}, "a=b c"},
      {{"tevron", "-modulePV=\xe9t\xe9"}, QString::fromLatin1("\xe9t\xe9")},
      {{"-modulePV=Orca"}, ""},
      {{"tevron", "-modulepv=Orca", "--modulePV=Orca", "modulePV=Orca"}, ""},
  };
  for (auto one : cases) {
    std::vector<char*> argv;
    for (std::string& argument : one.arguments) {
      argv.push_back(argument.data());
    }
    EXPECT_EQ(ModulePvArgument(static_cast<int>(argv.size()), argv.data()), one.model);
  }
}

}  // namespace
