// An upgrade that is broken at any of its pieces. Whatever happened, the lidar runs a whole image,
// what the user is told agrees with what the lidar itself says that it holds, and the next upgrade
// succeeds.

#include <fcntl.h>
#include <unistd.h>

#include <QJsonObject>
#include <chrono>
#include <optional>

#include "support/test_install.h"
#include "support/upgrade_bench.h"

namespace {

using std::chrono::milliseconds;

constexpr int kPieces = 40;
constexpr int kFilePieceKib = 1;
constexpr int kStreamPieceKib = 4;

enum class Expect {
  kOld,      ///< the transfer fails, and what the lidar runs is read back
  kUnknown,  ///< the lidar cannot be asked any more
  kNew,      ///< the piece goes out once more, and all is well
};

struct Cut {
  const char* model;
  int piece_kib;
  const char* fault;
  Expect expect;
};

const Cut kCuts[] = {
    {"Orca", kFilePieceKib, "close-at-piece", Expect::kOld},
    {"Orca", kFilePieceKib, "die-at-piece", Expect::kOld},
    {"Orca", kFilePieceKib, "refuse-piece", Expect::kOld},
    {"Orca", kFilePieceKib, "lose-piece", Expect::kOld},
    // The port has gone with its adapter, and the new one has another name.
    {"Lumo-CMX", kStreamPieceKib, "close-at-piece", Expect::kUnknown},
    {"Lumo-CMX", kStreamPieceKib, "die-at-piece", Expect::kOld},
    {"Lumo-CMX", kStreamPieceKib, "refuse-piece", Expect::kOld},
    {"Lumo-CMX", kStreamPieceKib, "lose-piece", Expect::kNew},
    {"Lumo-CMX", kStreamPieceKib, "damage-piece", Expect::kNew},
};

/// For a transfer that ends as expected; the answers of a busy machine have time.
UpgradeWaits ShortWaits() {
  UpgradeWaits waits;
  waits.begin = waits.partition = waits.reboot = milliseconds(1);
  waits.lidar_leaves = milliseconds(0);
  waits.lidar_returns.leaves = milliseconds(50);
  return waits;
}

/// Where something goes missing on purpose, which has to be noticed soon.
UpgradeWaits WaitsFor(Expect expect) {
  UpgradeWaits waits = ShortWaits();
  waits.file_piece_ms = 500;
  waits.stream_piece_ms = 300;
  if (expect == Expect::kUnknown) {
    waits.lidar_returns.returns = milliseconds(150);
  }
  return waits;
}

/// A port whose name no other process of the machine gets while this lives, gone or not.
class HeldPort {
 public:
  explicit HeldPort(const QString& name)
      : fd_(open(name.toStdString().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {}
  ~HeldPort() { close(fd_); }
  HeldPort(const HeldPort&) = delete;
  HeldPort& operator=(const HeldPort&) = delete;

 private:
  const int fd_;
};

/// The version that the lidar itself says that it runs.
std::string RunningOn(const VirtualLidarProcess& lidar) {
  const QJsonObject firmware = lidar.State().value("firmware").toObject();
  const QJsonObject partitions = firmware.value("partitions").toObject();
  const QJsonObject active = partitions.value(firmware.value("active").toString()).toObject();
  return active.value("version").toString().toStdString();
}

bool Holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

class UpgradeCut : public testing::TestWithParam<Cut> {
 protected:
  void Break(int piece);

  const Cut& cut_ = GetParam();
  TestInstall install_;
  Firmware firmware_;
  const QUrl first_ = firmware_.For(cut_.model, "2.8.0.1", kPieces* cut_.piece_kib);
  const QUrl next_ = firmware_.For(cut_.model, "2.9.0.1", kPieces* cut_.piece_kib);
};

void UpgradeCut::Break(int piece) {
  const QString fault = QString("%1=%2#1").arg(cut_.fault).arg(piece);
  VirtualLidarProcess lidar({"--model", cut_.model, "--fault", fault, "--restart-time", "20"});
  const std::string old_version = RunningOn(lidar);
  const QString old_port = lidar.SerialPort();
  const HeldPort held(cut_.expect == Expect::kUnknown ? old_port : "");
  {
    UpgradeBench bench(cut_.model, lidar, WaitsFor(cut_.expect));
    ASSERT_EQ(bench.Start(first_, false), 0);
    ASSERT_TRUE(bench.Ends());
    const UpgradeSnapshot end = bench.upgrade.Now();
    const std::string runs = RunningOn(lidar);
    EXPECT_EQ(runs, cut_.expect == Expect::kNew ? "2.8.0.1" : old_version);
    EXPECT_EQ(end.failed, cut_.expect != Expect::kNew) << end.outcome;
    if (cut_.expect == Expect::kUnknown) {
      EXPECT_EQ(end.version_after, "");
      EXPECT_TRUE(Holds(end.outcome, "did not come back")) << end.outcome;
    } else {
      EXPECT_TRUE(Holds(end.version_after, runs)) << end.version_after;
      EXPECT_TRUE(Holds(end.outcome, end.version_after)) << end.outcome;
    }
    EXPECT_EQ(Holds(end.outcome, "Upgrade complete"), cut_.expect == Expect::kNew) << end.outcome;
  }
  ASSERT_TRUE(
      WaitFor([&] { return cut_.expect != Expect::kUnknown || lidar.SerialPort() != old_port; }));
  UpgradeBench bench(cut_.model, lidar, ShortWaits());
  ASSERT_EQ(bench.Start(next_, false), 0);
  ASSERT_TRUE(bench.Ends());
  const std::string outcome = bench.upgrade.Now().outcome;
  EXPECT_EQ(RunningOn(lidar), "2.9.0.1");
  EXPECT_TRUE(Holds(outcome, "Upgrade complete") && Holds(outcome, "2.9.0.1")) << outcome;
}

TEST_P(UpgradeCut, AtAnyPiece) {
  for (int piece = 1; piece <= kPieces && !HasFailure(); piece += CUT_EVERY) {
    SCOPED_TRACE("piece " + std::to_string(piece));
    Break(piece);
  }
}

INSTANTIATE_TEST_SUITE_P(Faults, UpgradeCut, testing::ValuesIn(kCuts), [](const auto& cut) {
  std::string name = std::string(cut.param.model) + "_" + cut.param.fault;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
});

}  // namespace
