// Every fault mode of the catalogue on the real wire: what leaves, what a real client makes of it,
// and what the device holds afterwards.

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "lidar_under_test.h"

namespace {

const Bytes kSetSpeed = {0x47, 0x74, 0x31, 0, 0, 0, 0, 3, 0x04, 0xB0, 0x05};
const Bytes kSetReply = {0x47, 0x74, 0x31, 0, 0, 0, 0, 0};
const Bytes kProbe = {0x47, 0x74, 0x07, 0, 0, 0, 0, 0};  // request and answer look alike
const Bytes kStray = {'s', 't', 'r', 'a', 'y', ' ', 'b', 'y', 't', 'e', 's'};
const Bytes kOldSpeed = {0x02, 0x58};
const Bytes kNewSpeed = {0x04, 0xB0};

Bytes operator+(Bytes left, const Bytes& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

struct Expected {
  std::string order;
  Bytes on_wire;  // before the answer to the liveness request that follows, or the end
  bool closes = false;
  bool carried_out = true;
  int32_t client_error = 0;  // of a read through CmxClient
};

// Faults that act on any command; those of the handshake have tests of their own.
std::map<Fault, Expected> WireFaults() {
  constexpr int32_t kNoReply = kavel::lidar::kNoReply;
  const Bytes half(kSetReply.begin(), kSetReply.begin() + 4);
  return {
      {Fault::kDrop, {"drop", {}, false, true, kNoReply}},
      {Fault::kDelay, {"delay=30", kSetReply}},
      {Fault::kCorrupt, {"corrupt", {0x47, 0x2E, 0x31, 0, 0, 0, 0, 0}, false, true, kNoReply}},
      {Fault::kTruncate, {"truncate", half, false, true, kNoReply}},
      {Fault::kSplit, {"split", kSetReply, false, true, kNoReply}},
      {Fault::kGarbage, {"garbage", kStray + kSetReply}},
      {Fault::kWrongCommand, {"wrong-command", {0x47, 0x74, 0x32, 0, 0, 0, 0, 0}}},
      {Fault::kReturnCode,
       {"return-code=77", {0x47, 0x74, 0x31, 77, 0, 0, 0, 0}, false, false, 77}},
      {Fault::kCloseBeforeReply, {"close-before-reply", {}, true, true, kNoReply}},
      {Fault::kCloseMidReply, {"close-mid-reply", half, true, true, kNoReply}},
      {Fault::kStale, {"stale", kSetReply + kSetReply}},
      {Fault::kHugeLength,
       {"huge-length",
        {0x47, 0x74, 0x31, 0, 0x7F, 0, 0, 0},
        false,
        true,
        kavel::lidar::kReplyBrokeOff}},
  };
}

TEST(FaultOnTheWire, SendsWhatTheCatalogueSaysAndHoldsWhatWasWritten) {
  const auto expectations = WireFaults();
  for (const FaultMode& mode : FaultModes()) {
    SCOPED_TRACE(mode.name);
    if (std::string(mode.name).rfind("auth-", 0) == 0) continue;
    if (mode.fault == Fault::kBabble || mode.fault == Fault::kSilentAfter) continue;  // see below
    ASSERT_EQ(expectations.count(mode.fault), 1U) << "a new fault needs an expectation";
    const Expected& expected = expectations.at(mode.fault);

    LidarUnderTest::Setup setup;
    setup.faults = {expected.order + "@0x31"};
    LidarUnderTest lidar(std::move(setup));
    RawClient client(lidar.port());
    client.Send(kSetSpeed + kProbe);
    EXPECT_EQ(client.ReceiveUpTo(kProbe),
              expected.closes ? expected.on_wire : expected.on_wire + kProbe);
    EXPECT_EQ(client.closed(), expected.closes);
    EXPECT_TRUE(lidar.LogShows(std::string("[fault: ") + mode.name + "]"));
    EXPECT_EQ(lidar.Held("Speed"), expected.carried_out ? kNewSpeed : kOldSpeed);
  }
}

TEST(FaultOnTheWire, GivesARealClientTheErrorThatFits) {
  for (const auto& [fault, expected] : WireFaults()) {
    SCOPED_TRACE(expected.order);
    LidarUnderTest::Setup setup;
    setup.faults = {expected.order + "@0x30#1"};
    LidarUnderTest lidar(std::move(setup));
    const auto client = ConnectTo(lidar.port());
    Bytes result;
    int32_t error = 99;
    const int32_t outcome = client->QueryCommand({}, result, 0x30, false, &error);
    EXPECT_EQ(error, expected.client_error);
    // Another command in the answer is a failure without a reason of its own.
    const bool succeeds = expected.client_error == 0 && fault != Fault::kWrongCommand;
    EXPECT_EQ(outcome, succeeds ? 0 : -1);
    EXPECT_EQ(result, succeeds ? (Bytes{0x02, 0x58, 0xFD}) : Bytes());
    if (fault == Fault::kStale) {
      EXPECT_EQ(client->QueryCommand({}, result, 0x20, false, &error), 0)
          << "the second copy must not pass for this answer";
      EXPECT_EQ(result, (Bytes{192, 168, 1, 201}));
    }
    EXPECT_TRUE(lidar.LogShows("[fault: "));
  }
}

TEST(FaultOnTheWire, BabblesWithoutEnd) {
  LidarUnderTest::Setup setup;
  setup.faults = {"babble"};
  LidarUnderTest lidar(std::move(setup));
  RawClient client(lidar.port());
  client.Send(kSetSpeed);
  EXPECT_EQ(client.ReceiveExactly(kStray.size() * 3), kStray + kStray + kStray);
  const auto other = ConnectTo(lidar.port());
  Bytes result;
  EXPECT_EQ(other->QueryCommand({}, result, 0x30, false), -1);
  EXPECT_EQ(other->GetLastErrorCode(), kavel::lidar::kNoReply);
  EXPECT_EQ(lidar.Held("Speed"), kNewSpeed);
}

TEST(FaultOnTheWire, FallsSilentAfterTheFirstRequests) {
  LidarUnderTest::Setup setup;
  setup.faults = {"silent-after=2"};
  auto lidar = std::make_unique<LidarUnderTest>(std::move(setup));
  RawClient client(lidar->port());
  client.Send(kProbe + kProbe + kSetSpeed + kProbe);
  EXPECT_TRUE(lidar->LogShows("request 0x31 (3 bytes)"));
  EXPECT_TRUE(lidar->LogShows("[fault: silent-after]"));
  EXPECT_EQ(lidar->Held("Speed"), kOldSpeed);
  lidar.reset();
  EXPECT_EQ(client.ReceiveExactly(kProbe.size() * 3), kProbe + kProbe)
      << "nothing more until the link is gone";
}

}  // namespace
