#include <QFile>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSignalSpy>
#include <chrono>

#include "CmxClient/cmx_client.h"
#include "CmxClient/device_commands.h"
#include "manager_fixture.h"
#include "support/upgrade_bench.h"

namespace {

using Lines = std::vector<std::string>;

using std::chrono::milliseconds;

constexpr char kSent[] =
    "success: Upgrade package transmitted successfully. The lidar will automatically reboot";
constexpr char kFailed[] = "error: Upgrade package transfer failed or is terminated.";
constexpr char kNoReboot[] = "error: Auto reboot failed. Please reboot lidar manually.";

UpgradeWaits ShortWaits() {
  UpgradeWaits waits;
  waits.begin = waits.partition = milliseconds(1);
  waits.reboot = milliseconds(50);
  waits.lidar_returns.leaves = milliseconds(400);  // it has come back by then
  waits.lidar_returns.returns = milliseconds(4000);
  return waits;
}

/// The version that the lidar itself says that it runs.
std::string RunningOn(const VirtualLidarProcess& lidar) {
  const QJsonObject firmware = lidar.State()["firmware"].toObject();
  const QJsonObject partitions = firmware["partitions"].toObject();
  return partitions[firmware["active"].toString()]["version"].toString().toStdString();
}

class UpgradeTest : public testing::Test {
 protected:
  TestInstall install_;
  Firmware firmware_;
};

TEST_F(UpgradeTest, TellsWhatWasSentAndWhatTheLidarRunsAfterwards) {
  const std::string over = "begins\nends\n";
  const std::string sent = over + kSent + " within 10 seconds.\n";
  const std::string streamed = over + kSent + ".\n";
  const std::string failed = over + kFailed + '\n';
  const std::string foreign =
      over + kFailed + " error:" + kavel::lidar::CmxClient::ErrorText(8) + '\n';
  const std::string kiva = "success: Kiva upgrade completed. ";
  const std::string unanswered =
      over + "error: Kiva restart command failed, ret:no answer from the lidar\n" + kiva +
      "The restart command was not acknowledged; please power-cycle or reconnect the lidar if it "
      "does not respond.\n";
  // What is told, and an expression of the outcome.
  const std::tuple<QString, QString, QString, std::string, const char*> cases[] = {
      {"Orca", "Orca", "", sent,
       "^Upgrade complete: was 2026-10-18 v2.7.1.0, is \\S+ v2.8.0.0\\.$"},
      {"Orca", "Osprey", "", failed,
       "piece 1 of 8: lidar return code 8.* The lidar runs 2026-10-18 v2.7.1.0\\.$"},
      {"Orca", "Orca", "return-code=4@0x10", sent + kNoReboot + '\n',
       "order to restart failed: lidar return code 4 \\(not allowed now\\).* The lidar runs "
       "2026-10-18 v2.7.1.0\\.$"},
      {"Orca", "Orca", "drop@0x10", sent + kNoReboot + '\n',
       "^Upgrade complete: was 2026-10-18 v2.7.1.0, is \\S+ v2.8.0.0\\.$"},
      {"Orca", "Orca", "die-at-piece=5#1", failed,
       "piece 5 of 8: .* The lidar runs 2026-10-18 v2.7.1.0\\.$"},
      {"Osprey", "Osprey", "", sent, "^Upgrade complete: .*r2.8.0.0\\.$"},
      {"Lumo", "Lumo", "", streamed, "^Upgrade complete: .*2.8.0\\.$"},
      {"Lumo-CMX", "Lumo-CMX", "", streamed, "^Upgrade complete: .*2.8.0\\.$"},
      {"Lumo-CMX", "Kiva-CMX", "", foreign, "The lidar runs "},
      {"Kiva-CMX", "Kiva-CMX", "", over + kiva + "Restart command has been sent.\n",
       "^Upgrade complete: .* Taken: BMB_APP_B, BMB_FPGA, TMB_FPGA, TMB_PARAM\\.$"},
      {"Kiva-CMX", "Kiva-CMX", "drop@0x10", unanswered, "^Upgrade complete: "},
      {"Kiva-CMX", "Orca", "", "begins\nerror: Invalid Kiva OTA upgrade package\nends\n",
       "^Invalid Kiva OTA upgrade package\\. The lidar runs "},
  };
  for (const auto& [model, image_for, fault, wanted, outcome] : cases) {
    SCOPED_TRACE((model + ' ' + image_for + ' ' + fault).toStdString());
    QStringList arguments = {"--model", model};
    arguments << (fault.isEmpty() ? QStringList() : QStringList{"--fault", fault});
    // Points stand on the line of the acknowledgements.
    arguments << (model == "Lumo" ? QStringList{"--uart-points", "500"} : QStringList());
    const VirtualLidarProcess lidar(arguments);
    UpgradeBench bench(model, lidar, ShortWaits());
    ASSERT_EQ(bench.Start(firmware_.For(image_for, "2.8.0"), model == "Kiva-CMX"), 0);
    ASSERT_TRUE(bench.Ends());
    const UpgradeSnapshot end = bench.upgrade.Now();
    std::string told;
    for (const std::string& line : bench.Told()) {
      told += line + '\n';
    }
    EXPECT_EQ(told, wanted);
    EXPECT_TRUE(QRegularExpression(outcome).match(QString::fromStdString(end.outcome)).hasMatch())
        << end.outcome;
    EXPECT_EQ(end.failed, end.outcome.rfind("Upgrade complete", 0) != 0);
    EXPECT_FALSE(end.version_before.empty());
    EXPECT_FALSE(end.version_after.empty());
    EXPECT_TRUE(bench.session.state().connected);
  }
}

// Whatever becomes of a piece, the lidar runs a whole image, what is told agrees with what the
// lidar itself says, and the next upgrade succeeds.
TEST_F(UpgradeTest, IsCutAtAPieceAndTheNextOneSucceeds) {
  constexpr int kPieces = 10;
  const struct {
    QString model;
    int piece_kib;
    const char* fault;
    bool arrives = false;  ///< the piece goes out once more
  } cuts[] = {
      {"Orca", 1, "close-at-piece"},       {"Orca", 1, "die-at-piece"},
      {"Orca", 1, "refuse-piece"},         {"Orca", 1, "lose-piece"},
      {"Lumo-CMX", 4, "die-at-piece"},     {"Lumo-CMX", 4, "refuse-piece"},
      {"Lumo-CMX", 4, "lose-piece", true}, {"Lumo-CMX", 4, "damage-piece", true},
  };
  UpgradeWaits waits = ShortWaits();
  waits.lidar_leaves = milliseconds(0);
  UpgradeWaits short_of_pieces = waits;  // what goes missing is noticed soon
  short_of_pieces.file_piece_ms = 500;
  short_of_pieces.stream_piece_ms = 300;
  for (const auto& [model, piece_kib, fault, arrives] : cuts) {
    const QUrl first = firmware_.For(model, "2.8.0.1", kPieces * piece_kib);
    const QUrl next = firmware_.For(model, "2.9.0.1", kPieces * piece_kib);
    for (const int piece : {1, 6, kPieces}) {
      const QString order = QString("%1=%2#1").arg(fault).arg(piece);
      SCOPED_TRACE((model + ' ' + order).toStdString());
      const VirtualLidarProcess lidar({"--model", model, "--fault", order, "--restart-time", "20"});
      const std::string old_version = RunningOn(lidar);
      for (const bool is_next : {false, true}) {
        UpgradeBench bench(model, lidar, is_next ? waits : short_of_pieces);
        ASSERT_EQ(bench.Start(is_next ? next : first, false), 0);
        ASSERT_TRUE(bench.Ends());
        const UpgradeSnapshot end = bench.upgrade.Now();
        const std::string runs = RunningOn(lidar);
        EXPECT_EQ(runs, is_next ? "2.9.0.1" : arrives ? "2.8.0.1" : old_version);
        EXPECT_EQ(end.failed, !is_next && !arrives) << end.outcome;
        EXPECT_EQ(end.failed, end.outcome.find("Upgrade complete") == std::string::npos);
        EXPECT_NE(end.version_after.find(runs), std::string::npos) << end.version_after;
        EXPECT_NE(end.outcome.find(end.version_after), std::string::npos) << end.outcome;
      }
    }
  }
}

TEST_F(UpgradeTest, SaysWhatAKivaIsSentAndTellsTheVersionThatCameBack) {
  const VirtualLidarProcess lidar({"--model", "Kiva-CMX"});
  UpgradeBench bench("Kiva-CMX", lidar, ShortWaits());
  const QUrl file = firmware_.For("Kiva-CMX", "2.8.0");
  const QString about_kiva = "INFO: (Kiva|restore)";
  ASSERT_EQ(bench.Start(file, true), 0);
  EXPECT_EQ(bench.Start(file, true), -1);
  EXPECT_EQ(bench.Start(file, false), -1);
  ASSERT_TRUE(bench.Ends());
  const Lines told = bench.Told(about_kiva);
  ASSERT_GE(told.size(), 6U);
  EXPECT_EQ(told[1], "error: lidar is not connected, or lidar is upgrading");
  EXPECT_EQ(told[2], "error: lidar is not connected, or lidar is upgrade");
  EXPECT_EQ(told[3].rfind("INFO: Kiva OTA package parsed: flags=0x1f, total_size=", 0), 0U);
  EXPECT_EQ(told[4], "INFO: Kiva upgrade: current partition=A");
  EXPECT_EQ(told[5].rfind("INFO: Kiva upgrade: sending BMB_APP_B (type=0x02, size=", 0), 0U);
  EXPECT_EQ(told[6], "INFO: Kiva upgrade: BMB_APP_B completed");
  EXPECT_EQ(bench.upgrade.progress_kib(), bench.upgrade.total_kib());
  const auto steps = bench.upgrade.Now().steps;
  ASSERT_EQ(steps.size(), 7U);
  for (const UpgradeStep& step : steps) {
    EXPECT_EQ(step.state, UpgradeStepState::kDone) << step.name;
  }
  // The same package once more goes to the other partition, and shows no new version.
  ASSERT_EQ(bench.Start(file, true), 0);
  ASSERT_TRUE(bench.Ends());
  EXPECT_EQ(bench.Told(about_kiva)[2], "INFO: Kiva upgrade: current partition=B");
  EXPECT_EQ(bench.upgrade.Now().steps[0].name, "BMB_APP_A");
  EXPECT_NE(bench.upgrade.Now().outcome.find("did not start the new firmware"), std::string::npos);
}

TEST_F(UpgradeTest, ALidarThatStaysAwayOrIsLetGoIsToldAsThat) {
  const QUrl file = firmware_.For("Orca", "2.8.0");
  for (const bool user_stops : {false, true}) {
    const VirtualLidarProcess lidar({"--restart-time", "600000"});
    UpgradeBench bench("Orca", lidar, ShortWaits());
    ASSERT_EQ(bench.Start(file, false), 0);
    ASSERT_TRUE(WaitFor([&] { return bench.session.connecting(); }));
    EXPECT_FALSE(bench.session.state().upgrading);
    EXPECT_EQ(bench.Start(file, false), -1);
    if (user_stops) {
      bench.session.Stop();
    }
    ASSERT_TRUE(bench.Ends());
    const std::string outcome = bench.upgrade.Now().outcome;
    EXPECT_TRUE(bench.upgrade.Now().failed);
    EXPECT_NE(outcome.find(user_stops ? "not waited for any longer" : "not come back within 4 s"),
              std::string::npos)
        << outcome;
    EXPECT_NE(outcome.find("It ran "), std::string::npos) << outcome;
    EXPECT_EQ(bench.Told().size(), 4U) << "nothing but the refused second start";
  }
}

TEST_F(UpgradeTest, WatchesALidarThatIsSlowToGoDownAndSaysWhenItNeverDid) {
  const QUrl file = firmware_.For("Orca", "2.8.0");
  for (const bool leaves : {true, false}) {
    const VirtualLidarProcess lidar(
        {"--fault", leaves ? "return-code=0@0x10#1" : "return-code=0@0x10"});
    UpgradeWaits waits = ShortWaits();
    waits.lidar_leaves = milliseconds(leaves ? 60000 : 300);
    waits.lidar_returns.leaves = milliseconds(1);
    UpgradeBench bench("Orca", lidar, waits);
    ASSERT_EQ(bench.Start(file, false), 0);
    if (leaves) {
      ASSERT_TRUE(WaitFor([&] {
        const QString asked = lidar.Output().section("not carried out", 1);
        return asked.count("liveness") > 4;
      }));
      UpgradeBench other("Orca", lidar, ShortWaits());
      EXPECT_EQ(kavel::lidar::RestartDevice(*other.session.sender()), 0);
    }
    ASSERT_TRUE(bench.Ends());
    const UpgradeSnapshot end = bench.upgrade.Now();
    EXPECT_EQ(end.failed, !leaves);
    EXPECT_NE(end.outcome.find(leaves ? "Upgrade complete" : "not seen to restart"),
              std::string::npos)
        << end.outcome;
  }
}

TEST_F(UpgradeTest, EndsInTimeInEveryState) {
  const auto runs = [](size_t step) {
    return [step](UpgradeBench& bench) {
      return bench.upgrade.Now().steps[step].state == UpgradeStepState::kRunning;
    };
  };
  const std::tuple<QString, const char*, std::function<bool(UpgradeBench&)>> states[] = {
      {"Orca", "delay=60000@0x83",
       [](UpgradeBench& bench) { return bench.upgrade.progress_kib() > 0; }},
      {"Orca", "delay=60000@0x10", runs(1)},
      {"Orca", "drop@0x10", runs(2)},
      {"Orca", "return-code=0@0x10", runs(2)},
      {"Kiva-CMX", "drop@0x51", runs(0)},
      {"Lumo", "drop@0x51", runs(0)},
  };
  for (const auto& [model, fault, reached] : states) {
    SCOPED_TRACE(model.toStdString() + " " + fault);
    const VirtualLidarProcess lidar(
        {"--model", model, "--fault", fault, "--restart-time", "600000"});
    auto bench = std::make_unique<UpgradeBench>(model, lidar, ShortWaits());
    ASSERT_EQ(bench->Start(firmware_.For(model, "2.8.0"), model == "Kiva-CMX"), 0);
    ASSERT_TRUE(WaitFor([&, is_reached = reached] { return is_reached(*bench); }));
    EXPECT_EQ(bench->session.CheckLink(), bench->session.state().connected) << "not asked";
    const auto start = std::chrono::steady_clock::now();
    bench.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  }
}

class ManagerUpgradeTest : public ManagerFixture {
 protected:
  Firmware firmware_;
};

TEST_F(ManagerUpgradeTest, FilesAndLidarsThatCannotBeUsedAreRefusedInTheOperationsWords) {
  const QUrl none = QUrl::fromLocalFile("/none.patch");
  const QUrl empty = firmware_.Of({});
  EXPECT_EQ(manager_->UpgradeLidar(empty, 0, 0, 0), -1);
  EXPECT_EQ(manager_->KivaUpgradeLidar(empty), -1);
  EXPECT_EQ(TakeErrors(), (QStringList{"lidar is not connected, or lidar is upgrade",
                                       "lidar is not connected, or lidar is upgrading"}));
  const VirtualLidarProcess line({"--model", "Kiva-CMX"});
  manager_->InitConfigFileParser("Kiva-CMX");
  manager_->setSerialPort485(line.SerialPort());
  ASSERT_TRUE(Connect());
  EXPECT_EQ(manager_->LumoUpgradeLidar(none), 0);
  EXPECT_FALSE(manager_->isUpgrading());
  manager_->KivaUpgradeLidar(none);
  manager_->KivaUpgradeLidar(firmware_.Of(QByteArray(55, 'K')));
  EXPECT_EQ(TakeErrors(),
            (QStringList{"Failed to open upgrade file", "Upgrade package too small"}));
  manager_->LumoSetUpgradeMode(1);
  manager_->LumoSetUpgradeMode(0);
  EXPECT_EQ(successes_,
            QStringList({"set upgrade mode successful", "set upgrade mode successful"}));
  manager_->LumoSetUpgradeMode(3);
  EXPECT_EQ(TakeErrors().filter("set upgrade mode error, ret:").size(), 1);
  EXPECT_FALSE(manager_->UpgradeNow().running);
}

TEST_F(ManagerUpgradeTest, AStopInTheMiddleEndsTheTransferAndNothingEmptyIsATransfer) {
  const VirtualLidarProcess lidar({"--fault", "delay=60000@0x83"});
  ASSERT_TRUE(ConnectTo(lidar));
  QSignalSpy changed(manager_.get(), &TevronManager::isUpgradingChanged);
  for (const bool empty : {true, false}) {
    const QUrl file = firmware_.Of(QByteArray(empty ? 0 : 1023, '\1'));
    ASSERT_EQ(manager_->UpgradeLidar(file, 0, 0, 0), 0);
    EXPECT_TRUE(manager_->isUpgrading());
    EXPECT_EQ(manager_->upgradeProgressTotalLen(), 0);
    EXPECT_TRUE(manager_->CheckLidarConnection()) << "nothing waits for a line in use";
    manager_->Run(0);
    EXPECT_EQ(manager_->LumoUpgradeLidar(file), -1);
    EXPECT_EQ(TakeErrors(), (QStringList{"Please wait for the lidar to upgrade completely",
                                         "lidar is not connected, or lidar is upgrade"}));
    if (!empty) {
      ASSERT_TRUE(WaitFor([this] { return manager_->upgradeProgress() == 1; }));
      manager_->Stop();
    }
    ASSERT_TRUE(WaitFor([this] { return !manager_->UpgradeNow().running; }));
    EXPECT_EQ(TakeErrors(), QStringList("Upgrade package transfer failed or is terminated."));
    EXPECT_FALSE(manager_->isUpgrading());
    EXPECT_TRUE(manager_->UpgradeNow().failed);
  }
  EXPECT_EQ(changed.count(), 4);
  EXPECT_EQ(successes_, QStringList());
}

}  // namespace
