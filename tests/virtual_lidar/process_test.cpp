// The program as a user starts it.

#include <gtest/gtest.h>
#include <signal.h>

#include <QFile>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <string>
#include <tuple>

#include "support/child_process.h"
#include "support/table_fixture.h"
#include "support/wait_for.h"

namespace {

constexpr int kPatienceMs = 20000;

// Without --config it finds the tables of its own install root, from wherever it is started.
class Program : public ChildProcess {
 public:
  explicit Program(const QStringList& arguments) : ChildProcess(VIRTUAL_LIDAR_PROGRAM, arguments) {}
};

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

TEST(Process, ReadsItsFaultsAgainAndKeepsThoseBeforeWhenItCannot) {
  const TestFolder folder;
  const std::string path = folder.Write("faults", "# none yet\n\n");
  Program program({"--port", "0", "--model", "Orca", "--fault-file", path.c_str()});
  ASSERT_TRUE(program.Prints("listening on 127.0.0.1:")) << program.Output().toStdString();
  const auto port = program.Output().section("127.0.0.1:", 1).section('\n', 0, 0).toUShort();
  QTcpSocket client;
  client.connectToHost("127.0.0.1", port);
  ASSERT_TRUE(client.waitForConnected(kPatienceMs));
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"return-code=9\r\n", "read the faults in ", "return code 9, 0 bytes [fault: return-code]"},
      {"drop\ndorp\n", "faults, line 2: there is no fault named \"dorp\"; the faults before stay",
       "return code 9, 0 bytes [fault: return-code]"},
      {"", "read the faults in ", "return code 0"}};
  const auto prints = [&program](const QString& text, int times) {
    while (program.Output().count(text) < times && program.PrintsMore()) {
    }
    return program.Output().count(text) >= times;
  };
  int requests = 0;
  for (const auto& [faults, told, outcome] : cases) {
    folder.Write("faults", faults);
    const int before = program.Output().count(told);
    program.Signal(SIGHUP);
    ASSERT_TRUE(prints(told, before + 1)) << program.Output().toStdString();
    client.write(QByteArray::fromHex("4774070000000000"));
    ASSERT_TRUE(client.waitForBytesWritten(kPatienceMs));
    ASSERT_TRUE(prints("request 0x07", ++requests)) << program.Output().toStdString();
    EXPECT_TRUE(program.Output().section("request 0x07", -1).contains(outcome))
        << program.Output().toStdString();
  }
}

TEST(Process, OutlivesTheReaderOfItsLog) {
  QTemporaryDir folder;
  QProcess lidar;
  QProcess reader;
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
      {{"--fault-file", "/nonexistent"}, "cannot read the faults in /nonexistent: "},
      {{"--fault-file", "."}, "cannot read the faults in .: this is there and is no regular file"},
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
      {{"--tls", "/nonexistent/c", "/nonexistent/k"}, "The certificate file /nonexistent/c cannot"},
      {{"--tls-ca", "ca.pem"}, "--tls-ca requires --tls"},
      {{"--tls-make", "/dev/null/tls"}, "cannot make the folder /dev/null/tls: "},
      {{"--dump", "/nonexistent/state.json"}, "cannot write /nonexistent/state.json: "},
  };
  for (const auto& [arguments, text] : cases) {
    Program program(QStringList{"--port", "0"} + arguments);
    EXPECT_GT(program.ExitCode(), 0);
    EXPECT_TRUE(program.Output().contains(text)) << program.Output().toStdString();
  }
}

// With the tool that everybody has on the other side.
TEST(Process, SpeaksTlsWithTheFilesThatItMakes) {
  const QTemporaryDir parent;
  const QString folder = parent.filePath("new/tls");
  Program maker({"--tls-make", folder});
  ASSERT_EQ(maker.ExitCode(), 0) << maker.Output().toStdString();
  const QString key = folder + "/lidar-key.pem";
  EXPECT_EQ(QFile::permissions(key) & (QFile::ReadGroup | QFile::ReadOther), 0);
  QFile key_file(key);
  ASSERT_TRUE(key_file.open(QIODevice::ReadOnly));
  const QByteArray secret = key_file.readAll();
  Program again({"--tls-make", folder});
  EXPECT_GT(again.ExitCode(), 0);
  EXPECT_TRUE(again.Output().contains("ca.pem is there already"));
  key_file.seek(0);
  EXPECT_EQ(key_file.readAll(), secret) << "nothing is lost";

  const QString ca = folder + "/ca.pem";
  Program lidar(
      {"--port", "0", "--tls", folder + "/lidar.pem", key, "--tls-ca", ca, "--model", "Orca"});
  ASSERT_TRUE(lidar.Prints("listening on 127.0.0.1:")) << lidar.Output().toStdString();
  EXPECT_TRUE(lidar.Output().contains("TLS certificate CN=Virtual lidar, SHA-256 "));
  const QString port = lidar.Output().section("127.0.0.1:", 1).trimmed();
  ChildProcess client("sh", {"-c",
                             "printf 'Gt\\a\\0\\0\\0\\0\\0' | openssl s_client -quiet "
                             "-verify_return_error -verify_ip 127.0.0.1 -CAfile " +
                                 ca + " -cert " + folder + "/client.pem -key " + folder +
                                 "/client-key.pem -connect 127.0.0.1:" + port});
  EXPECT_TRUE(lidar.Prints("liveness, return code 0")) << client.Output().toStdString();
  EXPECT_TRUE(client.Prints("Gt")) << client.Output().toStdString();
  const QString line = QString::fromLatin1(secret).split('\n').value(1);
  EXPECT_FALSE((maker.Output() + lidar.Output()).contains(line)) << "no key is told";
}

TEST(Process, ChecksTheTables) {
  Program good({"--check-tables"});
  EXPECT_EQ(good.ExitCode(), 0) << good.Output().toStdString();

  const TestFolder config;
  config.Write("varID/Bad.csv",
               "GroupID,Index,Get,Set,VarName,Permission,VarType,DefaultValue,Options,Coefficient,"
               "VarLen,SetIndex,Unit,OptionDescription,FunctionModule,TimerUpdate,SetCoefficient\n"
               "1,1,0x01,,Wide,0,uint8,256,,,,,,,P,0,\n");
  config.Write("varID/Bad/Monitor_A.csv", "");
  config.Write("varID/Short.csv", "GroupID,Index\n1,1\n");
  config.Write("auth_config.csv",
               "Model,Enable,AlgorithmID,ProbeCmd,ChallengeCmd,ResponseCmd,ProtectedCmds,"
               "ProbeValueOffset,ProbeValueLen,ProbeEndian\n"
               "Bad,1,3,0xDF,0x66,0xE0,0x21||0x22,0,1,big\n"
               "Nobody,0,,,,,,,,\n");
  config.Write("site/feature_config.csv", "Model,EnableCmxClientHostPortUi,Link\nBad,0,tls\n");
  config.Write("tls/Bad/CA.pem", "");
  std::filesystem::permissions(config.Write("site/tls/Bad/key.pem", ""),
                               std::filesystem::perms::all);
  config.Write("site/tls/Bad/cert.pem", "");
  const std::string authority = config.path() + "/site/tls/Bad/ca.pem";
  std::filesystem::create_symlink("/nowhere", authority);
  Program bad({"--check-tables", "--config", QString::fromStdString(config.path())});
  EXPECT_EQ(bad.ExitCode(), 1);
  for (const char* text :
       {"Bad.csv, line 2: \"Wide\": DefaultValue \"256\"", "Short.csv",
        "no row has \"monitor\" for its Options", "/feature_config.csv: there is no such file",
        "auth_config.csv, line 2", "model \"Nobody\" has no variable table",
        "/site/tls/Bad/ca.pem cannot be read: No such file",
        "/site/tls/Bad/key.pem can be read by every user",
        "/tls/Bad/CA.pem: this file is not read: the files here are called ca.pem"}) {
    EXPECT_TRUE(bad.Output().contains(text)) << text << " in\n" << bad.Output().toStdString();
  }
}

// The home is the test's own.
TEST(Process, ReadsTheUsersTablesBehindThoseThatShip) {
  const std::filesystem::path folder =
      std::filesystem::path(qgetenv("XDG_CONFIG_HOME").toStdString()) / "Tevron/Config";
  const auto write = [&folder](const char* name, const std::string& content) {
    std::filesystem::create_directories((folder / name).parent_path());
    std::ofstream(folder / name) << content;
    return QString::fromStdString((folder / name).string());
  };
  const QString table =
      write("varID/Heron.csv", std::string(kTableHeader) +
                                   "1,1,0x01,,,PN,0,string,Heron-16,,,,,Device,16\n"
                                   "2,1,0x02,,,Block,0,uint8,7,monitor,,,,Watch\n");
  write("feature_config.csv",
        "Model,EnableCmxClientHostPortUi,ConnectType,SerialKind,Link\n"
        "Heron,0,2,2,\nOrca,0,2,1,\nOsprey,1,0,0,tls\n");
  const QString monitor =
      write("varID/Heron/Monitor_R1.csv",
            std::string(kTableHeader) + "1,1,0x39,,,Current,0,uint16,1,,A,,,Watch\n");
  const QString keys = write("auth_keys.ini", "[keys]\nmaskword_1=1\n");
  write("varID/osprey.csv", std::string(kTableHeader) + "1,1,0x01,,,PN,0,string,P,,,,,Device,16\n");
  std::filesystem::create_symlink("/nowhere", folder / "varID/Lumo.csv");
  std::filesystem::create_symlink("/nowhere", folder / "tls");
  std::filesystem::create_symlink("/nowhere", folder / "varID/Heron/Monitor_R2.csv");
  QFile::setPermissions(keys, QFile::ReadOther | QFile::ReadUser);
  Program list({"--list-models"});
  EXPECT_EQ(list.ExitCode(), 0);
  for (const QString& line : {"Heron\tserial line\tKiva\t" + table, QString("Orca\tserial line")}) {
    EXPECT_TRUE(list.Output().contains(line)) << list.Output().toStdString();
  }
  Program heron({"--model", "Heron"});
  ASSERT_TRUE(heron.Prints("serial port /dev/")) << heron.Output().toStdString();
  EXPECT_TRUE(heron.Output().contains("Heron is described by " + table));
  EXPECT_TRUE(heron.Output().contains("; tables of your own are read from " +
                                      QString::fromStdString(folder.string()) + '\n'));
  Program check({"--check-tables"});
  EXPECT_EQ(check.ExitCode(), 1);
  for (const QString& text :
       {"Tables in " + QString::fromStdString(folder.string()), monitor + ": 1 variable",
        keys + " can be read by every user", QString("\"osprey\" is another model than \"Osprey\""),
        QString("varID/Lumo.csv: there is no such file"),
        QString("tls/Osprey/ca.pem cannot be read"),
        QString("Monitor_R2.csv: there is no such file")}) {
    EXPECT_TRUE(check.Output().contains(text)) << text.toStdString() << " in\n"
                                               << check.Output().toStdString();
  }
  // What the current folder holds is nobody's configuration.
  const QByteArray home = qgetenv("HOME");
  const QByteArray configuration = qgetenv("XDG_CONFIG_HOME");
  qputenv("HOME", "/nowhere");
  qputenv("XDG_CONFIG_HOME", std::filesystem::relative(configuration.toStdString()).c_str());
  Program elsewhere({"--list-models"});
  EXPECT_EQ(elsewhere.ExitCode(), 0);
  EXPECT_FALSE(elsewhere.Output().contains("Heron"));
  qputenv("HOME", home);
  qputenv("XDG_CONFIG_HOME", configuration);
  const QString shipped = check.Output().section("Tables in ", 1, 1).section('\n', 0, 0);
  Program named({"--list-models", "--config", shipped});
  EXPECT_EQ(named.ExitCode(), 0);
  EXPECT_TRUE(named.Output().contains("Orca\tnetwork")) << "where a folder is named, it is all";
  EXPECT_FALSE(named.Output().contains("Heron"));

  std::filesystem::remove_all(folder);
  const auto expect_told = [](const char* reason) {
    Program told({"--check-tables", "Orca"});
    EXPECT_EQ(told.ExitCode(), 1);
    EXPECT_TRUE(told.Output().contains(reason)) << told.Output().toStdString();
    Program lidar({"--port", "0"});
    EXPECT_TRUE(lidar.Prints("listening on ")) << "the rest goes on";
    EXPECT_TRUE(lidar.Output().contains(reason)) << lidar.Output().toStdString();
  };
  std::ofstream(folder) << "no folder";
  expect_told("Tevron/Config: no table is read from here: Not a directory; make it a folder");
  std::filesystem::remove(folder);
  std::filesystem::create_symlink("/nowhere", folder);
  expect_told("Tevron/Config: no table is read from here: No such file or directory; ");
  std::filesystem::remove(folder);
  write("varID", "no folder");
  expect_told("Tevron/Config/varID: no table is read from here: Not a directory; ");
  std::filesystem::remove_all(folder);
}

// A model that no program knows the name of is what its tables say it is.
TEST(Process, ServesASerialModelThatOnlyTheTablesOfTheSiteKnow) {
  const TestFolder folder;
  std::filesystem::copy(TEVRON_CONFIG_SOURCE, folder.path(),
                        std::filesystem::copy_options::recursive);
  std::filesystem::remove_all(folder.path() + "/site");
  folder.Write("site/varID/Heron.csv",
               std::string(kTableHeader) + "1,1,0x01,,,PN,0,string,Heron-16,,,,,Device,16\n");
  folder.Write("site/feature_config.csv",
               "Model,EnableCmxClientHostPortUi,ConnectType,SerialKind\nHeron,0,2,2\n");
  const QString config = QString::fromStdString(folder.path());
  Program list({"--list-models", "--config", config});
  EXPECT_EQ(list.ExitCode(), 0);
  EXPECT_TRUE(list.Output().contains("Heron\tserial line\tKiva\t" + config + "/site/varID/"))
      << list.Output().toStdString();

  Program heron({"--model", "Heron", "--config", config});
  ASSERT_TRUE(heron.Prints("serial port /dev/")) << heron.Output().toStdString();
  EXPECT_TRUE(heron.Output().contains("Heron is described by " + config + "/site/varID/Heron.csv"));
  EXPECT_FALSE(heron.Output().contains("listening"));
}

}  // namespace
