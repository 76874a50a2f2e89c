// The program as a user starts it.

#include <gtest/gtest.h>
#include <signal.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <string>

#include "support/child_process.h"
#include "support/wait_for.h"

namespace {

constexpr int kPatienceMs = 20000;

// The program finds the tables below the current directory.
class Program : public ChildProcess {
 public:
  explicit Program(const QStringList& arguments, const QString& folder = SOURCE_FOLDER) {
    SetFolder(folder);
    Start(VIRTUAL_LIDAR_PROGRAM, arguments);
  }
};

void Write(const QString& name, const QByteArray& content) {
  QFile file(name);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  ASSERT_EQ(file.write(content), content.size());
}

TEST(Process, DumpsOnOneSignalAndEndsOnTwoOthers) {
  for (const int number : {SIGTERM, SIGINT}) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("state.json");
    Program program({"--port", "0", "--dump", path, "--set", "Spin Rate=1200"});
    ASSERT_TRUE(program.Prints("listening on 127.0.0.1:")) << program.Output().toStdString();
    ASSERT_TRUE(QFile::remove(path));
    program.Signal(SIGUSR1);
    EXPECT_TRUE(kavel::lidar::testing::WaitFor([&] { return QFile::exists(path); }));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("\"04 b0\""));
    program.Signal(number);
    EXPECT_EQ(program.ExitCode(), 0);
  }
}

TEST(Process, OutlivesTheReaderOfItsLog) {
  QTemporaryDir folder;
  QProcess lidar;
  QProcess reader;
  lidar.setWorkingDirectory(SOURCE_FOLDER);
  lidar.setStandardOutputProcess(&reader);
  lidar.start(VIRTUAL_LIDAR_PROGRAM, {"--port", "0", "--dump", folder.filePath("state.json")});
  reader.start("head", {"-n", "1"});
  ASSERT_TRUE(reader.waitForFinished(kPatienceMs));
  ASSERT_TRUE(folder.remove());
  // That the last dump cannot be written is a line that nobody reads.
  lidar.terminate();
  ASSERT_TRUE(lidar.waitForFinished(kPatienceMs));
  EXPECT_EQ(lidar.exitStatus(), QProcess::NormalExit);
}

TEST(Process, RefusesACommandLineThatMakesNoSense) {
  const std::pair<QStringList, const char*> cases[] = {
      {{"--fault", "dorp"}, "there is no fault named \"dorp\""},
      {{"--set", "Speed"}, "NAME=VALUE"},
      {{"--set", "Nobody=1"}, "no variable \"Nobody\""},
      {{"--model", "Nowhere"}, "\"Nowhere\"; there are Kiva-CMX, Lumo, Lumo-CMX, Orca, Osprey"},
      {{"--hardware", "Z9"}, "hardware \"Z9\" that can be used; there are A1, B2"},
      {{"--config", "/nonexistent"}, "there are no tables in /nonexistent/varID"},
      {{"--protocol", "3"}, "--protocol: "},
      {{"--udp", "127.0.0.1:1@0"}, "--udp: "},
      {{"--model", "Lumo-CMX", "--uart-points", "9"}, "Lumo-CMX has no pair of serial ports"},
      {{"--make-firmware", "v2", "/nonexistent/f"}, "\"v2\" is no version"},
      {{"--make-firmware", "2", "/nonexistent/f"}, "cannot write /nonexistent/f: "},
      {{"--dump", "/nonexistent/state.json"}, "cannot write /nonexistent/state.json: "},
  };
  for (const auto& [arguments, text] : cases) {
    Program program(QStringList{"--port", "0"} + arguments);
    EXPECT_GT(program.ExitCode(), 0);
    EXPECT_TRUE(program.Output().contains(text)) << program.Output().toStdString();
  }
}

TEST(Process, ChecksTheTables) {
  Program good({"--check-tables"});
  EXPECT_EQ(good.ExitCode(), 0) << good.Output().toStdString();

  const QTemporaryDir folder;
  const QString config = folder.filePath("Config/");
  QDir().mkpath(config + "varID");
  Write(config + "varID/Bad.csv",
        "GroupID,Index,Get,Set,VarName,Permission,VarType,DefaultValue,Options,Coefficient,VarLen,"
        "SetIndex,Unit,OptionDescription,FunctionModule,TimerUpdate,SetCoefficient\n"
        "1,1,0x01,,Wide,0,uint8,256,,,,,,,P,0,\n");
  QDir().mkpath(config + "varID/Bad");
  Write(config + "varID/Bad/Monitor_A.csv", "");
  Write(config + "varID/Short.csv", "GroupID,Index\n1,1\n");
  Write(config + "auth_config.csv",
        "Model,Enable,AlgorithmID,ProbeCmd,ChallengeCmd,ResponseCmd,ProtectedCmds,"
        "ProbeValueOffset,ProbeValueLen,ProbeEndian\n"
        "Bad,1,3,0xDF,0x66,0xE0,0x21||0x22,0,1,big\n"
        "Nobody,0,,,,,,,,\n");
  // The default folder is the one below the current directory.
  Program bad({"--check-tables"}, folder.path());
  EXPECT_EQ(bad.ExitCode(), 1);
  for (const char* text : {"Bad.csv, line 2: \"Wide\": DefaultValue \"256\"", "Short.csv",
                           "Bad.csv: no row has \"monitor\" for its Options",
                           "./Config/feature_config.csv: ", "auth_config.csv, line 2",
                           "model \"Nobody\" has no variable table"}) {
    EXPECT_TRUE(bad.Output().contains(text)) << text << " in\n" << bad.Output().toStdString();
  }
}

}  // namespace
