// The program itself as a process, far from its install root and without a display, with none of
// its data at hand.
#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

namespace {

constexpr int kPatienceMs = 30000;

TEST(ProgramTest, SettlesTheScaleFirstAndGoesOnWithoutAnyOfItsData) {
  const QTemporaryDir root;
  const QString copy = root.filePath("tevron");
  ASSERT_TRUE(QFile::copy(TEVRON_TEST_ROOT "/bin/tevron", copy));
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.remove("DISPLAY");
  QProcess program;
  program.setProcessEnvironment(environment);
  program.setProcessChannelMode(QProcess::MergedChannels);
  program.setWorkingDirectory("/");
  program.start(copy, QStringList());
  QByteArray output;
  int said_before = -1;
  // The platform that draws nowhere says the last of them of the window once that is there.
  for (const char* message : {"main dpi= 1 scale= 1", "[Tevron] applicationDirPath:",
                              "[Tevron] Font file missing: Roboto-Bold absolutePath:",
                              "[Tevron] Font file missing: Roboto-Regular absolutePath:",
                              "[Tevron] Window icon missing absolutePath:", "propagateSizeHints"}) {
    while (!output.contains(message) && program.waitForReadyRead(kPatienceMs)) {
      output += program.readAll();
    }
    EXPECT_GT(output.indexOf(message), said_before) << message << "\n" << output.toStdString();
    said_before = output.indexOf(message);
  }
  EXPECT_EQ(program.state(), QProcess::Running);
  program.kill();
  program.waitForFinished(kPatienceMs);
}

}  // namespace
