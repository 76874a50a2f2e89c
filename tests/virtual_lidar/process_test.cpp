// The program as a user starts it.

#include <gtest/gtest.h>
#include <signal.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace {

constexpr int kPatienceMs = 20000;

class Program {
 public:
  explicit Program(const QStringList& arguments, const QString& folder = QString()) {
    if (!folder.isEmpty()) process_.setWorkingDirectory(folder);
    process_.setProcessChannelMode(QProcess::MergedChannels);
    process_.start(VIRTUAL_LIDAR_PROGRAM, arguments);
  }

  bool Prints(const char* text) {
    while (!output_.contains(text)) {
      if (!process_.waitForReadyRead(kPatienceMs)) return false;
      output_ += process_.readAll();
    }
    return true;
  }
  void Signal(int number) { kill(static_cast<pid_t>(process_.processId()), number); }
  int ExitCode() {
    EXPECT_TRUE(process_.waitForFinished(kPatienceMs));
    output_ += process_.readAll();
    return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
  }
  const QByteArray& output() const { return output_; }

 private:
  QProcess process_;
  QByteArray output_;
};

const QStringList kConfig = {"--config", SHIPPED_CONFIG};

TEST(Process, EndsAtOnceOnEitherSignal) {
  for (const int number : {SIGTERM, SIGINT}) {
    Program program(QStringList{"--port", "0"} + kConfig);
    ASSERT_TRUE(program.Prints("listening on 127.0.0.1:")) << program.output().constData();
    program.Signal(number);
    EXPECT_EQ(program.ExitCode(), 0);
  }
}

TEST(Process, ServesEveryShippedModelOnItsLine) {
  for (const char* model : {"Orca", "Osprey"}) {
    Program program(QStringList{"--port", "0", "--model", model} + kConfig);
    EXPECT_TRUE(program.Prints("listening on 127.0.0.1:")) << program.output().constData();
    program.Signal(SIGTERM);
    EXPECT_EQ(program.ExitCode(), 0);
  }
  const std::pair<const char*, const char*> serial[] = {{"Lumo", "serial port 232 /dev/"},
                                                        {"Lumo-CMX", "serial port /dev/"},
                                                        {"Kiva-CMX", "serial port /dev/"}};
  for (const auto& [model, line] : serial) {
    Program program(QStringList{"--serial", "--model", model} + kConfig);
    EXPECT_TRUE(program.Prints(line)) << program.output().constData();
    program.Signal(SIGTERM);
    EXPECT_EQ(program.ExitCode(), 0);
  }
}

TEST(Process, DumpsOnRequestWithPresetsInPlace) {
  const QTemporaryDir folder;
  const QString path = folder.filePath("state.json");
  Program program(QStringList{"--port", "0", "--dump", path, "--set", "Spin Rate=1200"} + kConfig);
  ASSERT_TRUE(program.Prints("listening"));
  ASSERT_TRUE(QFile::remove(path));
  program.Signal(SIGUSR1);
  const QElapsedTimer started = [] {
    QElapsedTimer timer;
    timer.start();
    return timer;
  }();
  while (!QFile::exists(path) && started.elapsed() < kPatienceMs) {
  }
  program.Signal(SIGTERM);
  EXPECT_EQ(program.ExitCode(), 0);
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_TRUE(file.readAll().contains("\"04 b0\""));
}

TEST(Process, RefusesACommandLineThatMakesNoSense) {
  const std::pair<QStringList, const char*> cases[] = {
      {{"--fault", "dorp"}, "there is no fault named \"dorp\""},
      {{"--set", "Speed"}, "NAME=VALUE"},
      {{"--set", "Nobody=1"}, "no variable \"Nobody\""},
      {{"--model", "Nowhere"}, "varID/Nowhere.csv"},
      {{"--protocol", "3"}, "--protocol"},
      {{"--udp", "somewhere"}, "--udp"},
  };
  for (const auto& [arguments, text] : cases) {
    Program program(QStringList{"--port", "0"} + kConfig + arguments);
    EXPECT_NE(program.ExitCode(), 0);
    EXPECT_TRUE(program.output().contains(text)) << program.output().constData();
  }
}

TEST(Process, HelpNamesEveryOptionAndFault) {
  Program program({"--help"});
  EXPECT_EQ(program.ExitCode(), 0);
  for (const char* text : {"--serial", "--udp", "--dump", "--check-tables", "silent-after=N",
                           "auth-refuse-response", "127.0.0.1:9347"}) {
    EXPECT_TRUE(program.output().contains(text)) << text;
  }
}

TEST(Process, ChecksTheTables) {
  Program good(QStringList{"--check-tables"} + kConfig);
  EXPECT_EQ(good.ExitCode(), 0) << good.output().constData();

  const QTemporaryDir folder;
  QDir(folder.path()).mkpath("Config/varID");
  const auto write = [&](const char* name, const QByteArray& content) {
    QFile file(folder.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(content), content.size());
  };
  write("Config/varID/Bad.csv",
        "GroupID,Index,Get,Set,SetIndex,VarName,Permission,VarType,DefaultValue,Options,Unit,"
        "Coefficient,OptionDescription,FunctionModule,VarLen,TimerUpdate,SetCoefficient\n"
        "1,1,0x01,,,Fine,0,uint8,1,,,,,P,,0,\n"
        "1,2,0x01,,,Wide,0,uint8,256,,,,,P,,0,\n"
        "1,3,0x01,,,Zero,0,uint8,1,,,0,,P,,0,\n");
  write("Config/varID/Short.csv", "GroupID,Index\n1,1\n");
  write("Config/feature_config.csv", "Model\nBad\n");
  write("Config/auth_config.csv",
        "Model,Enable,AlgorithmID,ProbeCmd,ChallengeCmd,ResponseCmd,ProtectedCmds,"
        "ProbeValueOffset,ProbeValueLen,ProbeEndian\n"
        "Bad,1,3,0xDF,0x66,0xE0,0x21||0x22,0,1,big\n"
        "Nobody,0,,,,,,,,\n");
  // The default folder is the one below the current directory.
  Program bad({"--check-tables"}, folder.path());
  EXPECT_EQ(bad.ExitCode(), 1);
  for (const char* text : {"Bad.csv, line 3: \"Wide\": default \"256\"", "Bad.csv, line 4:",
                           "Short.csv", "feature_config.csv", "auth_config.csv, line 2",
                           "empty hex byte", "model \"Nobody\" has no variable table"}) {
    EXPECT_TRUE(bad.output().contains(text)) << text << " in\n" << bad.output().constData();
  }
}

}  // namespace
