#include "Source/serial_source.h"

#include <gtest/gtest.h>

#include <future>

#include "Wire/serial_frame.h"
#include "support/bytes.h"
#include "support/log_lines.h"
#include "support/pty_pair.h"
#include "support/wait_for.h"

namespace kavel::lidar {
namespace {

using namespace testing;

constexpr uint32_t kPatienceMs = 5000;
constexpr int32_t kPatienceUs = 5'000'000;

Bytes Answer(uint8_t cmd) { return BuildSerialResponse({0x01, cmd, 0x00}); }

TEST(SerialSource, KeepsAnswersAndPointCloudApart) {
  LogLines log;
  PtyPair line;
  SerialSource source(line.path(), 3125000, kReceiveAnswersAndPoints);
  ASSERT_TRUE(source.Open());
  UdpPacket packet;
  EXPECT_EQ(source.Receive(packet, UdpPacket::kCapacity, 0, 1000), 0);
  EXPECT_EQ(packet.timed_out, 1);

  const Bytes newer = {0x24, 0x4C, 0x44, 0x50, 0x54, 0x43, 0x2C, 0x02, 0x05, 0x00,
                       0x03, 0xAA, 0xBB, 0xCC, 0xB0, 0xA7, 0xE8, 0x09, 0xEE, 0xFF};
  line.Write(newer);
  line.Write(BuildPointCloudFrame({1, 2, 3}));
  line.Write(Answer(0x2A));
  ASSERT_EQ(source.Receive(packet, 2, 0, kPatienceUs), 2) << "cut to what was asked for";
  EXPECT_EQ(packet.data[1], 2);
  EXPECT_EQ(packet.timed_out, 0);
  EXPECT_EQ(log.Count(kWarning, "serial recv error point cloud, protocol Version: 02 05"), 1);
  Bytes block;
  ASSERT_EQ(source.ReceiveBlock(block, 1500, kPatienceMs), 20);
  EXPECT_EQ(block[8], 0x2A);
  EXPECT_EQ(source.GetCounters().points, 2U);
  EXPECT_EQ(source.GetCounters().dropped_points, 1U);
  source.Close();
  EXPECT_EQ(source.Receive(packet, 2, 0, kPatienceUs), -1);
  EXPECT_EQ(log.Count(kInfo, "Source::Close()"), 1);
}

TEST(SerialSource, ModeTwoEmptiesTheBufferAndNothingElse) {
  PtyPair line;
  SerialSource source(line.path(), 115200, kReceiveAnswersAndPoints);
  ASSERT_TRUE(source.Open());
  line.Write(Answer(1));
  line.Write(BuildPointCloudFrame({9}));
  ASSERT_TRUE(WaitFor([&] { return source.GetCounters().points == 1; }));

  source.SetReceiveMode(kModeEmptyBuffer);
  Bytes block;
  EXPECT_EQ(source.ReceiveBlock(block, 1500, 5), -1) << "the answer is gone";
  EXPECT_EQ(source.receive_mode(), kModePointCloud);
  EXPECT_EQ(source.GetCounters().answers, 1U) << "the counters stay";

  source.SetReceiveMode(kModeCommands);
  EXPECT_EQ(source.receive_mode(), kModeCommands);
  EXPECT_EQ(source.GetCounters().answers, 0U);
  UdpPacket packet;
  EXPECT_EQ(source.Receive(packet, 100, 0, 1000), 0) << "waiting packets are gone";
  line.Write(BuildPointCloudFrame({9}));
  line.Write(Answer(2));
  EXPECT_EQ(source.ReceiveBlock(block, 1500, kPatienceMs), 20);
  EXPECT_EQ(source.GetCounters().dropped_points, 1U) << "dropped in this mode";
}

TEST(SerialSource, MayBeOpenedByTwoThreadsAtOnce) {
  LogLines log;
  PtyPair line;
  EXPECT_FALSE(SerialSource(line.path(), 115200, 7).Open()) << "no such receive type";
  EXPECT_EQ(log.Count(kError, "not support receiveStype, open error"), 1);
  SerialSource source(line.path(), 115200, kReceiveAnswers);
  for (int round = 0; round < 20; ++round) {
    auto other = std::async(std::launch::async, [&] { return source.Open(); });
    EXPECT_TRUE(source.Open());
    EXPECT_TRUE(other.get());
    source.Close();
  }
}

TEST(SerialSource, BoundsWhatNobodyFetches) {
  PtyPair line;
  SerialSource source(line.path(), 3125000, kReceiveAnswersAndPoints);
  ASSERT_TRUE(source.Open());
  constexpr uint64_t kFrames = 700;
  for (uint64_t i = 0; i < kFrames; ++i) {
    line.Write(BuildPointCloudFrame({static_cast<uint8_t>(i), static_cast<uint8_t>(i >> 8)}));
  }
  ASSERT_TRUE(WaitFor([&] { return source.GetCounters().points == kFrames; }));
  UdpPacket packet;
  uint64_t fetched = 0;
  while (source.Receive(packet, 100, 0, 0) > 0) {
    ++fetched;
  }
  EXPECT_EQ(fetched + source.GetCounters().dropped_points, kFrames);
  EXPECT_GT(source.GetCounters().dropped_points, 0U);
  EXPECT_EQ(packet.data[0] + 256 * packet.data[1], 699) << "the newest are kept";
}

}  // namespace
}  // namespace kavel::lidar
