// The program itself as a process, far from its install root and without a display, with its data
// missing piece by piece.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

namespace {

constexpr int kPatienceMs = 30000;

class ProgramTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(QDir(root_.path()).mkpath(QStringLiteral("bin")));
    ASSERT_TRUE(QFile::copy(QStringLiteral(TEVRON_TEST_ROOT "/bin/tevron"),
                            root_.filePath(QStringLiteral("bin/tevron"))));
  }

  void TearDown() override {
    program_.kill();
    program_.waitForFinished(kPatienceMs);
  }

  void Link(const char* folder) {
    ASSERT_TRUE(QFile::link(QStringLiteral(TEVRON_TEST_ROOT "/") + folder,
                            root_.filePath(QString::fromLatin1(folder))));
  }

  /// Starts the program and returns what it has said once `last` was among it.
  QByteArray OutputUpTo(const QByteArray& last) {
    program_.setProcessChannelMode(QProcess::MergedChannels);
    program_.setWorkingDirectory(QStringLiteral("/"));
    program_.start(root_.filePath(QStringLiteral("bin/tevron")), QStringList());
    QByteArray output;
    while (!output.contains(last) && program_.waitForReadyRead(kPatienceMs)) {
      output += program_.readAll();
    }
    return output;
  }

  QTemporaryDir root_;
  QProcess program_;
};

TEST_F(ProgramTest, SettlesTheScaleFirstAndThenItsInstallRoot) {
  for (const char* folder : {"fonts", "png", "Config"}) {
    Link(folder);
  }
  const QByteArray output = OutputUpTo("[Tevron] applicationDirPath:");
  const int scale = output.indexOf("main dpi= 1 scale= 1");
  const int root = output.indexOf("[Tevron] applicationDirPath:");
  EXPECT_GE(scale, 0) << output.toStdString();
  EXPECT_GT(root, scale) << output.toStdString();
  const QString canonical = QDir(root_.path()).canonicalPath();
  EXPECT_TRUE(output.contains("installRoot: \"" + canonical.toUtf8() + '"'))
      << output.toStdString();
  EXPECT_FALSE(output.contains("missing")) << output.toStdString();
}

TEST_F(ProgramTest, GoesOnWithoutAnyOfItsData) {
  // The platform that draws nowhere says this of the window once that is there.
  const QByteArray window_is_up = "propagateSizeHints";
  const QByteArray output = OutputUpTo(window_is_up);
  for (const char* message :
       {"[Tevron] install root heuristic: missing fonts/Roboto-Regular-14.ttf in",
        "[Tevron] Font file missing: Roboto-Bold absolutePath:",
        "[Tevron] Font file missing: Roboto-Regular absolutePath:",
        "[Tevron] Window icon missing absolutePath:", window_is_up.constData()}) {
    EXPECT_TRUE(output.contains(message)) << message << "\n" << output.toStdString();
  }
  EXPECT_EQ(program_.state(), QProcess::Running);
}

}  // namespace
