// The real scene with a virtual lidar that misbehaves in every way it can: whatever the lidar does,
// the window goes on answering. The heart beats on the window's thread.

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <algorithm>
#include <iostream>

#include "app/screen.h"
#include "faults/fault_modes.h"
#include "support/heart.h"
#include "support/virtual_lidar_process.h"

namespace {

// An exchange waits this long for silence, for what clears the line, for a header, and for the
// payload behind it, each in turn at the worst. On top of one exchange a call may hold the window
// for a second; between two calls the window answers.
constexpr qint64 kReceiveTimeoutMs = 500;
constexpr qint64 kGrantedMs = 1000;
constexpr qint64 kLongestHoldMs = 4 * kReceiveTimeoutMs + kGrantedMs;

// A model whose writes are protected.
const char kModel[] = "Osprey";
const char kBeamTab[] = "tab2";
const char kHorizonTilt[] = "field_2_0_2";
const char kUpgradeTab[] = "tab6";

bool ActsOnPieces(const FaultMode& mode) {
  return std::string(mode.name).find("piece") != std::string::npos;
}

// The modes in which every request is answered at once, rightly or wrongly, so that nothing is
// waited out.
bool AnswersAtOnce(const FaultMode& mode) {
  switch (mode.fault) {
    case Fault::kGarbage:
    case Fault::kStale:
    case Fault::kTwice:
    case Fault::kReturnCode:
    case Fault::kAuthShortProbe:
    case Fault::kAuthShortChallenge:
    case Fault::kAuthZeroChallenge:
    case Fault::kAuthRefuseResponse:
      return true;
    default:
      return ActsOnPieces(mode);
  }
}

// From the first request after the connection stands, or at the second piece.
QString OrderOf(const FaultMode& mode) {
  QString order = mode.name;
  if (*mode.argument != '\0') {
    const QString number = mode.fault == Fault::kSilentAfter  ? "2"
                           : ActsOnPieces(mode)               ? "2"
                           : mode.fault == Fault::kReturnCode ? "9"
                                                              : "700";
    order += '=' + number;
  }
  const bool is_general =
      !ActsOnPieces(mode) && mode.fault != Fault::kSilentAfter && !order.startsWith("auth");
  return is_general ? order + "#3-1000000" : order;
}

class Session {
 public:
  explicit Session(const QString& order)
      : screen_(kModel),
        lidar_(order.isEmpty() ? QStringList{"--model", kModel}
                               : QStringList{"--model", kModel, "--fault", order}) {}

  void Use(bool upgrade) {
    heart_.Enter("connecting");
    ASSERT_TRUE(screen_.ConnectTo(lidar_.port()));
    heart_.Go();
    if (upgrade) {
      Upgrade();
    } else {
      EditAndSave();
    }
    heart_.Enter("link check");
    screen_.FindObject("linkCheckTimer")->setProperty("interval", 50);
    heart_.Go();
    CloseBoxes();
    heart_.Enter("leaving");
    screen_.Click("connectButton");
    heart_.Go();
    heart_.Enter("end");
  }

  bool Struck(const FaultMode& mode) const {
    return lidar_.Output().contains(QString("[fault: ") + mode.name);
  }
  const Heart& heart() const { return heart_; }

 private:
  void CloseBoxes() {
    while (!screen_.BoxMessage().isEmpty()) {
      const QString message = screen_.BoxMessage();
      screen_.Key(Qt::Key_Escape);
      WaitFor([&] { return screen_.BoxMessage() != message; }, 1000);
    }
  }

  void EditAndSave() {
    CloseBoxes();
    heart_.Enter("changing the page");
    screen_.Click(kBeamTab);
    CloseBoxes();
    heart_.Enter("typing");
    screen_.TypeInto(kHorizonTilt, "5");
    heart_.Enter("saving");
    screen_.Key(Qt::Key_S, Qt::ControlModifier);
    heart_.Go();
    CloseBoxes();
  }

  void Upgrade() {
    const QTemporaryDir folder;
    const QString file = folder.filePath("image.patch");
    VirtualLidarProcess::MakeFirmware(kModel, "2.8.0", file, 8);
    heart_.Enter("upgrading");
    screen_.Click(kUpgradeTab);
    screen_.Drop("upgradeDrop", {QUrl::fromLocalFile(file)});
    screen_.Click("startUpgrade");
    WaitFor([&] { return lidar_.Output().contains("[fault: "); });
    heart_.Go();
    CloseBoxes();
  }

  Screen screen_;
  VirtualLidarProcess lidar_;
  Heart heart_;
};

TEST(HeartbeatTest, GoesOnWhateverTheLidarDoes) {
  Session quiet("");
  quiet.Use(false);
  const qint64 quiet_ms = quiet.heart().longest_ms();
  std::cout << "quiet: " << quiet_ms << " ms, " << quiet.heart().where() << '\n';
  for (const FaultMode& mode : FaultModes()) {
    SCOPED_TRACE(mode.name);
    Session session(OrderOf(mode));
    session.Use(ActsOnPieces(mode));
    EXPECT_TRUE(session.Struck(mode));
    const qint64 longest_ms = session.heart().longest_ms();
    std::cout << mode.name << ": " << longest_ms << " ms, " << session.heart().where() << '\n';
    EXPECT_LT(longest_ms, quiet_ms + (AnswersAtOnce(mode) ? kGrantedMs : kLongestHoldMs));
  }
}

}  // namespace
