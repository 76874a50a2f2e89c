// Each command against a virtual lidar: its exit code, and what it prints.

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "cli/commands_fixture.h"
#include "libkavel/openssl_server.h"

namespace {

TEST_F(Commands, WrongUsageIsTwoAndSaysWhatIsRight) {
  const std::pair<QStringList, const char*> cases[] = {
      {{}, "subcommand"},
      {{"fly"}, "no command \"fly\""},
      {{"info"}, "--model"},
      {{"info", "--model", "Orca"}, "--host ADDRESS"},
      {{"info", "--model", "Orca", "--host", "lidar:1"}, "no address"},
      {{"info", "--model", "Orca", "--host", "127.0.0.1", "--host-port", "2000"}, "no host port"},
      {{"info", "--model", "Orca", "--host", "127.0.0.1", "--tls-pin", "a"},
       "not reached over TLS"},
      {{"info", "--model", "O", "--host", "127.0.0.1"}, "\"Orca\", \"Osprey\""},
      {{"info", "--model", "Lumo", "--serial", "/dev/null"}, "--serial RS485_PORT,UART_PORT"},
      {{"info", "--model", "Kiva", "--host", "127.0.0.1"}, "--serial PORT"},
      {{"info", "--model", "Orca", "--host", "127.0.0.1", "--serial", "x"}, "exclude"},
      {{"get", "--model", "Kiva", "--serial", "/dev/null"}, "in the window alone"},
      {{"send", "0xg1", "--model", "Orca", "--host", "127.0.0.1"}, "no hexadecimal byte"},
      {{"reset", "--model", "Orca", "--host", "127.0.0.1"}, "--yes"},
      {{"upgrade", "/nonexistent", "--model", "Orca", "--host", "127.0.0.1"}, "nonexistent"},
      {{"download", "all", "/nonexistent", "--model", "Orca", "--host", "127.0.0.1"}, "no folder"},
      {{"log", ".", "--model", "Lumo-CMX", "--serial", "/dev/null"}, "no operation log"},
      {{"calibration", ".", "--model", "Orca", "--host", "127.0.0.1"}, "no calibration"},
      {{"watch-udp", "--port", "0"}, "--port"},
      {{"models", "--config", "/nonexistent"}, "no tables in /nonexistent/varID"},
  };
  for (const auto& [arguments, words] : cases) {
    const Ran ended(2, arguments);
    EXPECT_TRUE(ended.err().contains(words)) << Words(ended);
    EXPECT_EQ(ended.Error()["code"], 2) << Words(ended);
  }
}

TEST_F(Commands, TellOfTheTables) {
  const Ran models(0, {"models"});
  EXPECT_EQ(models.Json()["models"].toArray().size(), 5);
  EXPECT_EQ(models.Json()["models"].toArray()[3].toObject()["reached"], "network");

  const Ran good(0, {"check-tables"});
  EXPECT_TRUE(good.Json()["faults"].isArray());
  std::ofstream("Config/varID/Osprey.csv", std::ios::app) << "1,1,0x51,,,Twice\n";
  const Ran bad(1, {"check-tables", "--model", "osp"});
  const QJsonObject fault = bad.Json()["faults"].toArray().last().toObject();
  EXPECT_TRUE(fault["file"].toString().endsWith("Osprey.csv")) << Words(bad);
  EXPECT_GT(fault["line"].toInt(), 1);
  EXPECT_FALSE(fault["reason"].toString().contains("Osprey.csv")) << Words(bad);
  ChildProcess same(TEVRON_VIRTUAL_LIDAR_PROGRAM,
                    {"--check-tables", "Osprey", "--config", "./Config"});
  EXPECT_EQ(same.ExitCode(), 1);
  const Said words(1, {"check-tables", "--model", "Osprey"});
  EXPECT_GT(words.out().size(), 0);
  EXPECT_TRUE(same.Output().endsWith(QString::fromUtf8(words.out()))) << Words(words);
}

TEST_F(Commands, LetNoTextOfALidarCommandTheTerminal) {
  const QString hostile = QString::fromUtf8(
      "X\x1b]0;t\x07\nSN = 1\xc2\x9b"
      "1m");
  const VirtualLidarProcess lidar({"--set", "SN=" + hostile});
  const Said words(0, {"get", "SN"}, At(lidar));
  EXPECT_EQ(words.out(), "SN = X\\u001b]0;t\\u0007\\u000aSN = 1\\u009b1m\n");
  const Ran json(0, {"get", "SN"}, At(lidar));
  EXPECT_EQ(ValueOf(json, "SN")["text"], hostile);
  EXPECT_FALSE(json.out().contains("\x9b"));
}

TEST_F(Commands, ReadWhatTheLidarHolds) {
  const VirtualLidarProcess lidar({"--set", "Spin Rate=1200"});
  const Ran info(0, {"info"}, At(lidar));
  for (const char* key : {"pn", "sn", "hardware", "firmware"}) {
    EXPECT_FALSE(info.Json()[key].toString().isEmpty()) << key;
  }
  EXPECT_EQ(info.Json()["model"], "Orca");
  EXPECT_EQ(info.Json()["address"], "127.0.0.1:" + QString::number(lidar.port()));

  const Ran some(0, {"get", "spin r", "Range Offset"}, At(lidar));
  EXPECT_EQ(some.Json()["values"].toArray().size(), 2);
  const QJsonObject rate = ValueOf(some, "Spin Rate");
  EXPECT_EQ(rate["text"], "1200");
  EXPECT_EQ(rate["hex"], "04 b0");
  EXPECT_EQ(rate["id"], "4-1");
  EXPECT_EQ(rate["page"], "Scan");
  EXPECT_EQ(rate["unit"], "rpm");
  EXPECT_EQ(rate["state"], "read");

  // Every value is the lidar's own, those of its hardware version among them.
  const Ran all(0, {"get"}, At(lidar));
  EXPECT_GT(all.Json()["values"].toArray().size(), 80);
  EXPECT_EQ(ValueOf(all, "Clock Synchronisation")["hex"],
            lidar.Held("Clock Synchronisation", "hex"));
  EXPECT_FALSE(ValueOf(all, "Emitter Temperature").isEmpty());

  const Ran ambiguous(2, {"get", "spin"}, At(lidar));
  EXPECT_TRUE(ambiguous.err().contains("\"Spin Rate\", \"Spin Direction\"")) << Words(ambiguous);

  const Ran monitor(0, {"monitor", "--interval", "0.1", "--duration", "1", "--csv", "m.csv"},
                    At(lidar));
  EXPECT_GE(monitor.out().count('\n'), 2) << Words(monitor);
  EXPECT_LE(monitor.out().count('\n'), 11) << Words(monitor);
  EXPECT_EQ(ValueOf(monitor, "Rotor Speed")["state"], "read") << Words(monitor);
  QFile csv("m.csv");
  ASSERT_TRUE(csv.open(QIODevice::ReadOnly));
  EXPECT_TRUE(csv.readLine().startsWith("timestamp,Monitor Hardware,Emitter Temperature (°C),"));
}

TEST_F(Commands, SendAndTellWhatTheLidarSaid) {
  const VirtualLidarProcess lidar({"--fault", "drop@0x34"});
  const Ran taken(1, {"send", "0x12", "04b0", "0", "00"}, At(lidar));  // the payload is too short
  EXPECT_EQ(taken.Json()["return_code"], 2);
  EXPECT_EQ(taken.Error()["lidar_code"], 2);
  const Ran read(0, {"send", "11"}, At(lidar));
  EXPECT_TRUE(read.Json()["payload"].toString().startsWith("02 58 ")) << Words(read);
  const Ran lost(4, {"send", "34"}, At(lidar));

  const Ran nobody(3, {"info", "--model", "Orca", "--host", "127.0.0.1:1"});
  EXPECT_TRUE(nobody.Error()["message"].toString().contains("127.0.0.1")) << Words(nobody);
}

TEST_F(Commands, RestartResetAndSaveFiles) {
  const VirtualLidarProcess lidar({"--set", "Spin Rate=1200", "--log-size", "5000"});
  const Ran restart(0, {"restart"}, At(lidar));
  EXPECT_EQ(restart.Json()["back"], true);
  EXPECT_EQ(lidar.Held("Spin Rate"), "1200");
  QDir kept(qEnvironmentVariable("XDG_DATA_HOME") + "/Tevron/snapshots");
  kept.removeRecursively();
  const Ran reset(0, {"reset", "--yes", "--no-wait"}, At(lidar));
  EXPECT_EQ(reset.Json()["accepted"], true);
  EXPECT_EQ(lidar.Held("Spin Rate"), "600");
  kept.refresh();
  EXPECT_EQ(kept.entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 1) << "what it held is kept";

  const std::pair<QStringList, int> downloads[] = {{{"download", "event", "."}, 1},
                                                   {{"log", "."}, 4}};
  for (const auto& [arguments, count] : downloads) {
    const Ran download(0, arguments, At(lidar));
    const QJsonArray files = download.Json()["files"].toArray();
    ASSERT_EQ(files.size(), count) << Words(download);
    EXPECT_EQ(QFile(files.first().toString()).size(), 5000);
  }
}

TEST_F(Commands, AcceptOneCertificateOfAnEncryptedLink) {
  const kavel::lidar::testing::Certificates certificates;
  const auto identity = [&](const std::string& name) {
    return QStringList{"--tls", QString::fromStdString(certificates.Cert(name)),
                       QString::fromStdString(certificates.Key(name))};
  };
  install_.Write("Config/site/feature_config.csv",
                 "Model,EnableCmxClientHostPortUi,Link\nOrca,0,tls\n");
  const VirtualLidarProcess lidar(identity("lidar"));
  const QStringList info = QStringList{"--json", "--timeout", "60", "info"} + At(lidar);
  Tevronctl stranger(info);
  EXPECT_EQ(stranger.Code(), 3) << "at once, since no later try would end otherwise";
  const QString sha256 = stranger.Json()["certificate"].toObject()["sha256"].toString();
  EXPECT_TRUE(stranger.Error()["message"].toString().contains("give --tls-pin " + sha256))
      << Words(stranger);

  const QString shown = sha256.toUpper().replace(QRegularExpression("(..)(?=.)"), "\\1:");
  Tevronctl accepted(info + QStringList{"--tls-pin", shown});
  EXPECT_EQ(accepted.Code(), 0) << Words(accepted);
  const QJsonObject certificate = accepted.Json()["certificate"].toObject();
  EXPECT_EQ(certificate["sha256"], sha256);
  EXPECT_EQ(certificate["trusted_by"], "fingerprint");
  Tevronctl restart(QStringList{"restart", "--tls-pin", sha256} + At(lidar));
  EXPECT_EQ(restart.Code(), 0) << Words(restart);
  Tevronctl again(info);
  EXPECT_EQ(again.Code(), 3) << "nothing is remembered";

  const std::pair<QString, int> wrong[] = {{QString(64, 'a'), 3}, {"ab:cd", 2}, {"", 2}};
  for (const auto& [pin, code] : wrong) {
    Tevronctl refused(QStringList{"info", "--tls-pin", pin} + At(lidar));
    EXPECT_EQ(refused.Code(), code) << Words(refused);
  }

  const VirtualLidarProcess issued(identity("good"));
  std::filesystem::create_directories("Config/site/tls/Orca");
  std::filesystem::copy(certificates.Cert("ca"), "Config/site/tls/Orca/ca.pem");
  Tevronctl vouched(QStringList{"--json", "info"} + At(issued));
  EXPECT_EQ(vouched.Code(), 0) << Words(vouched);
  EXPECT_EQ(vouched.Json()["certificate"].toObject()["trusted_by"], "authority");
  Tevronctl forged(QStringList{"info"} + At(lidar));
  EXPECT_EQ(forged.Code(), 3) << Words(forged);
}

TEST_F(Commands, WorkOverSerialLinesAsFarAsTheyGo) {
  const VirtualLidarProcess lumo({"--model", "Lumo"});
  const QStringList at{"--model", "Lumo", "--serial",
                       lumo.SerialPort("485") + ',' + lumo.SerialPort("232")};
  const Ran info(0, {"info"}, at);
  EXPECT_EQ(info.Json()["sn"], "Lumo2600731");
  const Ran calibration(0, {"calibration", "c.bin"}, at);
  EXPECT_GT(QFile("c.bin").size(), 0);
  const Said restart(0, {"restart"}, at);
}

TEST_F(Commands, UpgradeTellsBothVersionsAndEndsCleanlyWhenInterrupted) {
  VirtualLidarProcess::MakeFirmware("Orca", "9.8.7", "orca.patch", 64);
  const VirtualLidarProcess slow({"--fault", "delay=200@0x83"});
  Tevronctl interrupted(QStringList{"--json", "upgrade", "orca.patch"} + At(slow));
  ASSERT_TRUE(interrupted.Says("Upgrading")) << Words(interrupted);
  interrupted.Signal(SIGINT);
  EXPECT_EQ(interrupted.Code(), 130) << Words(interrupted);
  EXPECT_EQ(interrupted.Error()["code"], 130);
  const Said alive(0, {"info"}, At(slow));

  const VirtualLidarProcess lidar;
  const Ran upgrade(0, {"upgrade", "orca.patch"}, At(lidar));
  EXPECT_TRUE(upgrade.Json()["after"].toString().contains("9.8.7")) << Words(upgrade);
  EXPECT_NE(upgrade.Json()["before"], upgrade.Json()["after"]);
  EXPECT_FALSE(upgrade.err().contains('\r')) << "a progress bar that is on no terminal";

  const VirtualLidarProcess closing({"--fault", "close-at-piece=3"});
  const Ran lost(4, {"upgrade", "orca.patch"}, At(closing));

  VirtualLidarProcess::MakeFirmware("Osprey", "9.8.7", "osprey.patch", 1);
  const Ran refused(1, {"upgrade", "osprey.patch"}, At(lidar));
}

TEST_F(Commands, CountThePacketsOfThePointCloud) {
  quint16 port = 0;
  {
    const VirtualLidarProcess unused;
    port = unused.port();
  }
  const VirtualLidarProcess lidar({"--udp", "127.0.0.1:" + QString::number(port) + "@200"});
  const QStringList watch{"watch-udp", "--interval", "0.2", "--duration", "1", "--port"};
  const Ran counted(0, watch, {QString::number(port)});
  EXPECT_GT(counted.Json()["packets"].toInt(), 0);
  EXPECT_GT(counted.Json()["rate"].toDouble(), 0);
  EXPECT_EQ(counted.Json()["lost"], 0) << Words(counted);
  EXPECT_EQ(counted.Json()["senders"].toArray().size(), 1);
  EXPECT_GT(counted.out().count('\n'), 1) << "a line an interval";
}

}  // namespace
