#include "startup.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <vector>

#include "app/message_recorder.h"

namespace {

const QString kRegular = QStringLiteral("fonts/Roboto-Regular-14.ttf");

void Put(const QString& root, const QString& path, const QByteArray& bytes) {
  QDir(root).mkpath(QFileInfo(path).path());
  QFile file(QDir(root).filePath(path));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  ASSERT_EQ(file.write(bytes), bytes.size());
}

QByteArray RealFont() {
  QFile file(QStringLiteral(TEVRON_TEST_FONT));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
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
  };
  for (const auto& screen : screens) {
    const double scale =
        ComputeScaleFactor(screen.w, screen.h, screen.physical_w, screen.physical_h);
    EXPECT_EQ(QString::number(scale, 'g', 6), screen.text) << screen.w << "x" << screen.h;
  }
}

TEST(ScaleFactor, SurvivesAScreenWithoutASize) {
  EXPECT_EQ(ComputeScaleFactor(0, 0, 0, 0), 1.0);
  EXPECT_EQ(ComputeScaleFactor(1920, 0, 1920, 1080), 1.0);
  EXPECT_EQ(ComputeScaleFactor(2560, 1440, -1, 1440), 1.0);
}

TEST(ScaleFactor, ReachesTheEnvironmentAsShortText) {
  const QByteArray before = qgetenv("QT_SCALE_FACTOR");
  const MessageRecorder messages;
  ApplyScaleFactor({2560, 1440, 2560, 1440});
  EXPECT_EQ(qgetenv("QT_SCALE_FACTOR"), "1.33333");
  ApplyScaleFactor({1280, 720, 1920, 1080});
  EXPECT_EQ(qgetenv("QT_SCALE_FACTOR"), "1.2");
  EXPECT_EQ(messages.debug().last(), "main dpi= 1.5 scale= 1.2");
  qputenv("QT_SCALE_FACTOR", before);
}

TEST(ScreenMetricsTest, WithoutADisplayAnOrdinaryScreenIsAssumed) {
  const QByteArray before = qgetenv("DISPLAY");
  qunsetenv("DISPLAY");
  const ScreenMetrics screen = ReadScreenMetrics();
  if (!before.isEmpty()) {
    qputenv("DISPLAY", before);
  }
  EXPECT_EQ(screen.logical_width, 1920);
  EXPECT_EQ(screen.logical_height, 1080);
  EXPECT_EQ(screen.physical_width, 1920);
  EXPECT_EQ(screen.physical_height, 1080);
}

TEST(Palette, EveryGroupHasTheSameDarkColours) {
  const struct {
    QPalette::ColorRole role;
    QRgb colour;
  } roles[] = {
      {QPalette::ToolTipBase, 0xff010101},
      {QPalette::AlternateBase, 0xff010101},
      {QPalette::Base, 0xff010101},
      {QPalette::Dark, 0xff222325},
      {QPalette::Window, 0xff2b2c2e},
      {QPalette::Mid, 0xff2b2c2e},
      {QPalette::Button, 0xff3a3d3f},
      {QPalette::Midlight, 0xff4d4d4d},
      {QPalette::Light, 0xff666666},
      {QPalette::Highlight, 0xff999999},
      {QPalette::Text, 0xffeeeeee},
      {QPalette::ButtonText, 0xffeeeeee},
      {QPalette::WindowText, 0xffeeeeee},
      {QPalette::BrightText, 0xffeeeeee},
      {QPalette::HighlightedText, 0xffeeeeee},
      {QPalette::PlaceholderText, 0xffeeeeee},
  };
  const QPalette palette = ApplicationPalette();
  for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
    for (const auto& entry : roles) {
      const QBrush& brush = palette.brush(group, entry.role);
      EXPECT_EQ(brush.color().rgba(), entry.colour) << "role " << entry.role << " group " << group;
      EXPECT_EQ(brush.style(), Qt::SolidPattern) << "role " << entry.role;
    }
    for (const auto role :
         {QPalette::Shadow, QPalette::Link, QPalette::LinkVisited, QPalette::ToolTipText}) {
      EXPECT_EQ(palette.brush(group, role), QPalette().brush(group, role)) << "role " << role;
    }
  }
}

class InstallRoot : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(folder_.isValid());
    ASSERT_TRUE(QDir(parent()).mkpath(QStringLiteral("bin")));
  }

  QString parent() const { return QDir(folder_.path()).canonicalPath(); }
  QString exe_dir() const { return parent() + QStringLiteral("/bin"); }

  QTemporaryDir folder_;
};

TEST_F(InstallRoot, IsTheParentThatHoldsTheFont) {
  Put(parent(), kRegular, "font");
  const MessageRecorder messages;
  EXPECT_EQ(ResolveInstallRoot(exe_dir()), parent());
  EXPECT_TRUE(messages.warnings().isEmpty());
}

TEST_F(InstallRoot, IsTheExecutablesFolderWhenOnlyThatHoldsTheFont) {
  Put(exe_dir(), kRegular, "font");
  const MessageRecorder messages;
  EXPECT_EQ(ResolveInstallRoot(exe_dir()), exe_dir());
  EXPECT_TRUE(messages.warnings().isEmpty());
}

TEST_F(InstallRoot, IsTheParentWhenBothHoldTheFont) {
  Put(parent(), kRegular, "font");
  Put(exe_dir(), kRegular, "font");
  EXPECT_EQ(ResolveInstallRoot(exe_dir()), parent());
}

TEST_F(InstallRoot, IsTheParentWithOneWarningWhenNeitherDoes) {
  const MessageRecorder messages;
  EXPECT_EQ(ResolveInstallRoot(exe_dir()), parent());
  ASSERT_EQ(messages.warnings().size(), 1);
  // The two bytes of the separator are no UTF-8, so the logger shows each as a replacement.
  const QString separator(2, QChar(QChar::ReplacementCharacter));
  EXPECT_EQ(messages.warnings().first(),
            QStringLiteral("[Tevron] install root heuristic: missing fonts/Roboto-Regular-14.ttf "
                           "in \"%1\" and \"%2\" %3 using parent of exe dir: \"%2\"")
                .arg(exe_dir(), parent(), separator));
}

TEST(ApplicationFonts, ReportWhatIsWrongWithAFile) {
  QTemporaryDir folder;
  Put(folder.path(), QStringLiteral("bad.ttf"), "this is no font");
  QDir(folder.path()).mkpath(QStringLiteral("folder.ttf"));
  const struct {
    QString path;
    QString message;
  } cases[] = {
      {folder.filePath("none.ttf"), "[Tevron] Font file missing: Bold absolutePath: \"%1\""},
      {folder.filePath("folder.ttf"), "[Tevron] Font file missing: Bold absolutePath: \"%1\""},
      {folder.filePath("bad.ttf"),
       "[Tevron] addApplicationFont failed: Bold absolutePath: \"%1\" id: -1"},
  };
  for (const auto& one : cases) {
    const MessageRecorder messages;
    EXPECT_EQ(LoadApplicationFont(one.path, "Bold"), -1);
    EXPECT_EQ(messages.warnings(), QStringList(one.message.arg(one.path)));
  }
}

TEST(ApplicationFonts, GiveTheInterfaceTheRegularFamily) {
  QTemporaryDir root;
  Put(root.path(), kRegular, RealFont());
  const MessageRecorder messages;
  EXPECT_EQ(ApplicationFont(root.path()).family(), "Roboto");
  // The bold one is missing, which is reported and changes nothing.
  ASSERT_EQ(messages.warnings().size(), 1);
  EXPECT_TRUE(messages.warnings().first().startsWith("[Tevron] Font file missing: Roboto-Bold "));
}

TEST(ApplicationFonts, KeepTheDefaultWithoutTheRegularFile) {
  QTemporaryDir root;
  const MessageRecorder messages;
  EXPECT_EQ(ApplicationFont(root.path()).family(), QFont().family());
  EXPECT_EQ(messages.warnings().size(), 2);
}

TEST(WindowIcon, IsDrawnFromTheFileOrLeftOut) {
  QTemporaryDir root;
  const MessageRecorder messages;
  EXPECT_TRUE(ApplicationIcon(root.path()).isNull());
  const QString path = root.filePath("png/Tevron-LOGO-black.svg");
  EXPECT_EQ(messages.warnings(),
            QStringList("[Tevron] Window icon missing absolutePath: \"" + path + "\""));
  QDir(root.path()).mkpath("png");
  ASSERT_TRUE(QFile::copy(QStringLiteral(TEVRON_TEST_ICON), path));
  EXPECT_FALSE(ApplicationIcon(root.path()).pixmap(64, 64).isNull());
}

QString ModelOf(std::vector<std::string> arguments) {
  std::vector<char*> argv;
  argv.reserve(arguments.size());
  for (std::string& argument : arguments) {
    argv.push_back(argument.data());
  }
  return ModulePvArgument(static_cast<int>(argv.size()), argv.data());
}

TEST(ModulePv, TakesTheFirstMatchingArgumentAfterTheProgram) {
  EXPECT_EQ(ModelOf({"tevron", "-modulePV=Osprey"}), "Osprey");
  EXPECT_EQ(ModelOf({"tevron", "-x", "-modulePV=Osprey", "-modulePV=Orca"}), "Osprey");
  EXPECT_EQ(ModelOf({"tevron", "-modulePV=", "-modulePV=Orca"}), "");
  EXPECT_EQ(ModelOf({"tevron", "-modulePV=a=b c"}), "a=b c");
  EXPECT_EQ(ModelOf({"tevron", "-modulePV=\xe9t\xe9"}), QString::fromLatin1("\xe9t\xe9"));
}

TEST(ModulePv, IgnoresEverythingElse) {
  EXPECT_EQ(ModelOf({"tevron"}), "");
  EXPECT_EQ(ModelOf({"-modulePV=Orca"}), "");
  EXPECT_EQ(ModelOf({"tevron", "-modulepv=Orca", "--modulePV=Orca", "modulePV=Orca"}), "");
}

}  // namespace
