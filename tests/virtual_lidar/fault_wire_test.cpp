// Every fault mode of the catalogue on the real wire: what leaves, and what the device holds
// afterwards. Those of the handshake are tried on the guard alone.

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

#include "lidar_under_test.h"

namespace {

const Bytes kHalf = {0x47, 0x74, 0x31, 0};
const Bytes kStray = {'s', 't', 'r', 'a', 'y', ' ', 'b', 'y', 't', 'e', 's'};

struct Expected {
  std::string order;
  Bytes on_wire;  // what comes back for the request and a liveness request behind it
  bool closes = false;
  bool carried_out = true;
  Bytes request = kSetSpeed;
};

const std::map<Fault, Expected>& WireFaults() {
  static const std::map<Fault, Expected> faults = {
      {Fault::kDrop, {"drop", kLiveness}},
      {Fault::kDelay, {"delay=30", kSetReply + kLiveness}},
      {Fault::kLate, {"late=30", kSetReply + kLiveness}},
      {Fault::kCorrupt, {"corrupt", Bytes{0x47, 0x2E, 0x31, 0, 0, 0, 0, 0} + kLiveness}},
      {Fault::kTruncate, {"truncate", kHalf + kLiveness}},
      {Fault::kSplit, {"split", kSetReply + kLiveness}},
      {Fault::kDrip, {"drip=1", kReading + kLiveness, false, false, kReadSpeed}},
      {Fault::kGarbage, {"garbage", kStray + kSetReply + kLiveness}},
      {Fault::kBabble, {"babble", kStray + kStray + kStray}},
      {Fault::kWrongCommand, {"wrong-command", Bytes{0x47, 0x74, 0x32, 0, 0, 0, 0, 0} + kLiveness}},
      {Fault::kReturnCode,
       {"return-code=77", Bytes{0x47, 0x74, 0x31, 77, 0, 0, 0, 0} + kLiveness, false, false}},
      {Fault::kCloseBeforeReply, {"close-before-reply", {}, true}},
      {Fault::kCloseMidReply, {"close-mid-reply", kHalf, true}},
      {Fault::kStale, {"stale", kSetReply + kSetReply + kLiveness}},
      {Fault::kTwice, {"twice", kSetReply + kSetReply + kLiveness}},
      {Fault::kEcho, {"echo", kSetSpeed + kSetReply + kLiveness}},
      {Fault::kHugeLength, {"huge-length", Bytes{0x47, 0x74, 0x31, 0, 0x7F, 0, 0, 0} + kLiveness}},
  };
  return faults;
}

TEST(FaultOnTheWire, SendsWhatTheCatalogueSaysAndHoldsWhatWasWritten) {
  for (const FaultMode& mode : FaultModes()) {
    SCOPED_TRACE(mode.name);
    if (std::string(mode.name).rfind("auth-", 0) == 0 || mode.fault == Fault::kSilentAfter) {
      continue;
    }
    ASSERT_EQ(WireFaults().count(mode.fault), 1U) << "a new fault needs an expectation";
    const Expected& expected = WireFaults().at(mode.fault);

    LidarUnderTest::Setup setup;
    setup.faults = {expected.order + "@" + std::to_string(expected.request[2])};
    LidarUnderTest lidar(std::move(setup));
    TcpEnd client = TcpEnd::To(lidar.port());
    client.Send(expected.request + kLiveness);
    EXPECT_EQ(client.Read(expected.on_wire.size()), expected.on_wire);
    if (expected.closes) {
      EXPECT_TRUE(client.EndsHere());
    }
    EXPECT_TRUE(lidar.LogShows(std::string("[fault: ") + mode.name + "]"));
    EXPECT_EQ(lidar.Held("Speed"),
              expected.carried_out ? (Bytes{0x04, 0xB0}) : (Bytes{0x02, 0x58}));
  }
}

TEST(FaultOnTheWire, TakesTheTimeAskedFor) {
  using std::chrono::milliseconds;
  const struct {
    const char* fault;
    Bytes ask;
    Bytes answer;
    milliseconds least;
    milliseconds most = std::chrono::hours(1);
  } cases[] = {
      {"delay=50", kLiveness + kLiveness, kLiveness + kLiveness, milliseconds(100)},
      {"late=400", kLiveness + kLiveness + kLiveness, kLiveness + kLiveness + kLiveness,
       milliseconds(400), milliseconds(1200)},
      {"drip=50", kReadSpeed, kReading, milliseconds(150)},
      {"twice", kLiveness, kLiveness + kLiveness, milliseconds(20)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.fault);
    LidarUnderTest::Setup setup;
    setup.faults = {c.fault};
    LidarUnderTest lidar(std::move(setup));
    TcpEnd client = TcpEnd::To(lidar.port());
    const auto start = std::chrono::steady_clock::now();
    client.Send(c.ask);
    EXPECT_EQ(client.Read(c.answer.size()), c.answer);
    const auto taken = std::chrono::steady_clock::now() - start;
    EXPECT_GE(taken, c.least);
    EXPECT_LT(taken, c.most);
  }
}

TEST(FaultOnTheWire, FallsSilentAfterTheFirstRequests) {
  LidarUnderTest::Setup setup;
  setup.faults = {"silent-after=2"};
  auto lidar = std::make_unique<LidarUnderTest>(std::move(setup));
  TcpEnd client = TcpEnd::To(lidar->port());
  client.Send(kLiveness + kLiveness + kSetSpeed);
  EXPECT_TRUE(lidar->LogShows("request 0x31 (3 bytes)"));
  EXPECT_TRUE(lidar->LogShows("[fault: silent-after]"));
  EXPECT_EQ(lidar->Held("Speed"), (Bytes{0x02, 0x58}));
  lidar.reset();
  EXPECT_EQ(client.Read(24), kLiveness + kLiveness) << "nothing more until the link is gone";
}

}  // namespace
