#include "startup.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>

#include "app/message_recorder.h"
#include "support/test_folder.h"

namespace {

TEST(ScaleFactor, FollowsTheDesktopOrTheWidth) {
  const std::tuple<int, int, int, int, const char*> screens[] = {
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
  for (const auto& [width, height, physical_width, physical_height, text] : screens) {
    ApplyScaleFactor({width, height, physical_width, physical_height});
    EXPECT_EQ(qgetenv("QT_SCALE_FACTOR"), text) << width << "x" << height;
  }
  qputenv("QT_SCALE_FACTOR", before);
}

TEST(InstallRoot, IsTheFirstFolderThatHoldsTheFontOrElseTheParent) {
  const char font[] = "fonts/Roboto-Regular-14.ttf";
  for (const auto& [in_parent, beside_program] :
       {std::pair(true, false), {false, true}, {true, true}, {false, false}}) {
    const TestFolder folder;
    folder.Write("bin/tevron", "");
    if (in_parent) {
      folder.Write(font, "font");
    }
    if (beside_program) {
      folder.Write(std::string("bin/") + font, "font");
    }
    const QString parent = QDir(folder.path().c_str()).canonicalPath();
    const QString exe_dir = parent + "/bin";
    const MessageRecorder messages;
    EXPECT_EQ(ResolveInstallRoot(exe_dir), in_parent || !beside_program ? parent : exe_dir);
    // The two bytes of the separator are no UTF-8, so the logger shows each as a replacement.
    const QString separator(2, QChar(QChar::ReplacementCharacter));
    const QString warning = QString(
                                "[Tevron] install root heuristic: missing %4 in \"%1\" and "
                                "\"%2\" %3 using parent of exe dir: \"%2\"")
                                .arg(exe_dir, parent, separator, font);
    EXPECT_EQ(messages.warnings(),
              in_parent || beside_program ? QStringList() : QStringList(warning));
  }
}

TEST(ApplicationData, GivesTheInterfaceItsFontAndItsIconOrSaysWhyNot) {
  const TestFolder folder;
  const QString path = folder.path().c_str();
  folder.Write("bad.ttf", "this is no font");
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
  const std::pair<std::vector<std::string>, QString> cases[] = {
      {{"tevron", "-modulePV=Osprey"}, "Osprey"},
      {{"tevron", "-x", "-modulePV=Osprey", "-modulePV=Orca"}, "Osprey"},
      {{"tevron", "-modulePV=", "-modulePV=Orca"}, ""},
      {{"tevron", "-modulePV=a=b c"}, "a=b c"},
      {{"tevron", "-modulePV=\xe9t\xe9"}, QString::fromLatin1("\xe9t\xe9")},
      {{"-modulePV=Orca"}, ""},
      {{"tevron", "-modulepv=Orca", "--modulePV=Orca", "modulePV=Orca"}, ""},
  };
  for (auto [arguments, model] : cases) {
    std::vector<char*> argv;
    for (std::string& argument : arguments) {
      argv.push_back(argument.data());
    }
    EXPECT_EQ(ModulePvArgument(static_cast<int>(argv.size()), argv.data()), model);
  }
}

}  // namespace
