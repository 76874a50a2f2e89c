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

Bytes operator+(Bytes left, const Bytes& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

struct Expected {
  std::string order;
  Bytes on_wire;  // what comes back for a write and a liveness request behind it
  bool closes = false;
  bool carried_out = true;
};

const std::map<Fault, Expected>& WireFaults() {
  static const std::map<Fault, Expected> faults = {
      {Fault::kDrop, {"drop", kLiveness}},
      {Fault::kDelay, {"delay=30", kSetReply + kLiveness}},
      {Fault::kCorrupt, {"corrupt", Bytes{0x47, 0x2E, 0x31, 0, 0, 0, 0, 0} + kLiveness}},
      {Fault::kTruncate, {"truncate", kHalf + kLiveness}},
      {Fault::kSplit, {"split", kSetReply + kLiveness}},
      {Fault::kGarbage, {"garbage", kStray + kSetReply + kLiveness}},
      {Fault::kBabble, {"babble", kStray + kStray + kStray}},
      {Fault::kWrongCommand, {"wrong-command", Bytes{0x47, 0x74, 0x32, 0, 0, 0, 0, 0} + kLiveness}},
      {Fault::kReturnCode,
       {"return-code=77", Bytes{0x47, 0x74, 0x31, 77, 0, 0, 0, 0} + kLiveness, false, false}},
      {Fault::kCloseBeforeReply, {"close-before-reply", {}, true}},
      {Fault::kCloseMidReply, {"close-mid-reply", kHalf, true}},
      {Fault::kStale, {"stale", kSetReply + kSetReply + kLiveness}},
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
    setup.faults = {expected.order + "@0x31"};
    LidarUnderTest lidar(std::move(setup));
    RawClient client(lidar.port());
    client.Send(kSetSpeed + kLiveness);
    EXPECT_EQ(client.Receive(expected.on_wire.size()), expected.on_wire);
    if (expected.closes) {
      EXPECT_TRUE(client.Ended());
    }
    EXPECT_TRUE(lidar.LogShows(std::string("[fault: ") + mode.name + "]"));
    EXPECT_EQ(lidar.Held("Speed"),
              expected.carried_out ? (Bytes{0x04, 0xB0}) : (Bytes{0x02, 0x58}));
  }
}

TEST(FaultOnTheWire, FallsSilentAfterTheFirstRequests) {
  LidarUnderTest::Setup setup;
  setup.faults = {"silent-after=2"};
  auto lidar = std::make_unique<LidarUnderTest>(std::move(setup));
  RawClient client(lidar->port());
  client.Send(kLiveness + kLiveness + kSetSpeed);
  EXPECT_TRUE(lidar->LogShows("request 0x31 (3 bytes)"));
  EXPECT_TRUE(lidar->LogShows("[fault: silent-after]"));
  EXPECT_EQ(lidar->Held("Speed"), (Bytes{0x02, 0x58}));
  lidar.reset();
  EXPECT_EQ(client.Receive(24), kLiveness + kLiveness) << "nothing more until the link is gone";
}

}  // namespace
