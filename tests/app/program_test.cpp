// The program itself as a process, far from its install root and without a display, with none of
// its data at hand.
#include <gtest/gtest.h>

#include <QFile>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include "support/child_process.h"

namespace {

TEST(ProgramTest, SettlesTheScaleFirstAndGoesOnWithoutAnyOfItsData) {
  const QTemporaryDir root;
  const QString copy = root.filePath("tevron");
  ASSERT_TRUE(QFile::copy(TEVRON_TEST_ROOT "/bin/tevron", copy));
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.remove("DISPLAY");
  ChildProcess program;
  program.SetEnvironment(environment);
  program.SetFolder("/");
  program.Start(copy);
  int said_before = -1;
  // The platform that draws nowhere says the last of them of the window once that is there.
  for (const char* message : {"main dpi= 1 scale= 1", "[Tevron] applicationDirPath:",
                              "[Tevron] Font file missing: Roboto-Bold absolutePath:",
                              "[Tevron] Font file missing: Roboto-Regular absolutePath:",
                              "[Tevron] Window icon missing absolutePath:", "propagateSizeHints"}) {
    program.Prints(message);
    EXPECT_GT(program.Output().indexOf(message), said_before) << message << "\n"
                                                              << program.Output().toStdString();
    said_before = program.Output().indexOf(message);
  }
  EXPECT_TRUE(program.Runs());
}

}  // namespace
