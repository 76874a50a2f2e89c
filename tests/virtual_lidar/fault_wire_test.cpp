// Every fault mode of the catalogue on the real wire: what leaves and when, and what the device
// holds afterwards. Those of the handshake are tried on the guard alone.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <type_traits>

#include "Wire/cmx_header.h"
#include "Wire/file_piece.h"
#include "firmware_file.h"
#include "lidar_under_test.h"
#include "tls_end.h"

namespace {

using std::chrono::milliseconds;

const Bytes kHalf = {0x47, 0x74, 0x31, 0};
const Bytes kStray = {'s', 't', 'r', 'a', 'y', ' ', 'b', 'y', 't', 'e', 's'};
const Bytes kWrite = kSetSpeed + kLiveness;
// An image in one piece. What a fault makes of it leaves the setting alone.
const Bytes kPiece = kavel::lidar::BuildCmxFrame(
    kavel::lidar::kCmxHeader1, 0x83, 0,
    kavel::lidar::BuildFilePiece(
        MakeFirmware("Test", SerialFamily::kNone, {"2.8.0", "2026-11-21"}, 100), 1));
const Bytes kUpgrade = kPiece + kLiveness;

Bytes PieceAnswer(uint8_t return_code) { return {0x47, 0x74, 0x83, return_code, 0, 0, 0, 0}; }

struct Row {
  Fault fault;
  const char* order;
  Bytes answers;
  Bytes requests = kWrite;
  enum { kHeld, kWritten } speed = kWritten;
  enum { kStaysOpen, kHangsUp, kGoesOn } ending = kStaysOpen;
  milliseconds least{0};
  milliseconds most = std::chrono::hours(1);
};

const Row kRows[] = {
    {Fault::kDrop, "drop@0x31", kLiveness},
    {Fault::kDelay, "delay=50", kSetReply + kLiveness, kWrite, Row::kWritten, Row::kStaysOpen,
     milliseconds(100)},
    {Fault::kLate, "late=400", kSetReply + kLiveness + kLiveness, kWrite + kLiveness, Row::kWritten,
     Row::kStaysOpen, milliseconds(400), milliseconds(1200)},
    {Fault::kCorrupt, "corrupt@0x31", Bytes{0x47, 0x2E, 0x31, 0, 0, 0, 0, 0} + kLiveness},
    {Fault::kTruncate, "truncate@0x31", kHalf + kLiveness},
    {Fault::kSplit, "split", kSetReply + kLiveness, kWrite, Row::kWritten, Row::kStaysOpen,
     milliseconds(32)},
    {Fault::kDrip, "drip=50", kReading + kLiveness, kReadSpeed + kLiveness, Row::kHeld,
     Row::kStaysOpen, milliseconds(150)},
    {Fault::kDripHeader, "drip-header=50@0x30", kReading + kLiveness, kReadSpeed + kLiveness,
     Row::kHeld, Row::kStaysOpen, milliseconds(400)},
    {Fault::kForeign, "foreign@0x31",
     Bytes{0x57, 0x75, 1, 0x31, 0, 0, 0, 0, 0, 0, 0, 0} + kSetReply + kLiveness},
    {Fault::kUnasked, "unasked@0x31",
     Bytes{0x47, 0x74, 0x51, 0, 0, 0, 0, 0} + kSetReply + kLiveness},
    {Fault::kFlood, "flood@0x31", kSetReply + kSetReply + kSetReply, kWrite, Row::kWritten,
     Row::kGoesOn},
    {Fault::kShort, "short@0x30", Bytes{0x47, 0x74, 0x30, 0, 0, 0, 0, 1, 0x02} + kLiveness,
     kReadSpeed + kLiveness, Row::kHeld},
    {Fault::kLong, "long@0x31",
     Bytes{0x47, 0x74, 0x31, 0, 0, 0, 0, 16} + Bytes(16, 0xEE) + kLiveness},
    {Fault::kReset, "reset", {}, kWrite, Row::kWritten, Row::kHangsUp},
    {Fault::kGarbage, "garbage@0x31", kStray + kSetReply + kLiveness},
    {Fault::kBabble, "babble@0x31", kStray + kStray + kStray, kWrite, Row::kWritten, Row::kGoesOn},
    {Fault::kWrongCommand, "wrong-command@0x31",
     Bytes{0x47, 0x74, 0x32, 0, 0, 0, 0, 0} + kLiveness},
    {Fault::kReturnCode, "return-code=77@0x31", Bytes{0x47, 0x74, 0x31, 77, 0, 0, 0, 0} + kLiveness,
     kWrite, Row::kHeld},
    {Fault::kCloseBeforeReply, "close-before-reply", {}, kWrite, Row::kWritten, Row::kHangsUp},
    {Fault::kCloseMidReply, "close-mid-reply", kHalf, kWrite, Row::kWritten, Row::kHangsUp},
    {Fault::kStale, "stale@0x31", kSetReply + kSetReply + kLiveness},
    {Fault::kTwice, "twice@0x31", kSetReply + kSetReply + kLiveness, kWrite, Row::kWritten,
     Row::kStaysOpen, milliseconds(20)},
    {Fault::kEcho, "echo@0x31", kSetSpeed + kSetReply + kLiveness},
    {Fault::kHugeLength, "huge-length@0x31", Bytes{0x47, 0x74, 0x31, 0, 0x7F, 0, 0, 0} + kLiveness},
    {Fault::kRefusePiece, "refuse-piece=1#1", PieceAnswer(3) + PieceAnswer(0) + kLiveness,
     kPiece + kUpgrade, Row::kHeld},
    {Fault::kLosePiece, "lose-piece=1", kLiveness, kUpgrade, Row::kHeld},
    {Fault::kDamagePiece, "damage-piece=1", PieceAnswer(7) + kLiveness, kUpgrade, Row::kHeld},
    {Fault::kCloseAtPiece, "close-at-piece=1", {}, kUpgrade, Row::kHeld, Row::kHangsUp},
    {Fault::kDieAtPiece, "die-at-piece=1@0x83", {}, kUpgrade, Row::kHeld, Row::kHangsUp},
    {Fault::kSilentAfter, "silent-after=1", kLiveness, kLiveness + kSetSpeed, Row::kHeld},
};

template <typename End>
void Try(const FaultMode& mode, const Row& row) {
  LidarUnderTest::Setup setup;
  setup.faults = {row.order};
  if (std::is_same_v<End, TlsEnd>) {
    setup.server.tls = LidarFiles();
  }
  auto lidar = std::make_unique<LidarUnderTest>(std::move(setup));
  End client = End::To(lidar->port());
  const auto start = std::chrono::steady_clock::now();
  client.Send(row.requests);
  EXPECT_EQ(client.Read(row.answers.size()), row.answers);
  const auto taken = std::chrono::steady_clock::now() - start;
  EXPECT_GE(taken, row.least);
  EXPECT_LT(taken, row.most);
  EXPECT_TRUE(row.ending != Row::kHangsUp || client.EndsHere());
  EXPECT_TRUE(lidar->LogShows(std::string("[fault: ") + mode.name + "]"));
  EXPECT_EQ(lidar->Held("Speed"),
            row.speed == Row::kWritten ? Bytes({0x04, 0xB0}) : Bytes({0x02, 0x58}));
  lidar.reset();
  EXPECT_TRUE(row.ending == Row::kGoesOn || client.EndsHere()) << "and nothing more";
}

TEST(FaultOnTheWire, SendsWhatTheCatalogueSaysAndHoldsWhatWasWritten) {
  for (const FaultMode& mode : FaultModes()) {
    SCOPED_TRACE(mode.name);
    const auto* row = std::find_if(std::begin(kRows), std::end(kRows),
                                   [&](const Row& r) { return r.fault == mode.fault; });
    if (row == std::end(kRows)) {
      EXPECT_EQ(std::string(mode.name).rfind("auth-", 0), 0U) << "a new fault needs its row";
      continue;
    }
    Try<TcpEnd>(mode, *row);
    Try<TlsEnd>(mode, *row);
  }
}

}  // namespace
