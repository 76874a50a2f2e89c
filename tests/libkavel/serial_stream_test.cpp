#include "Wire/serial_stream.h"

#include <gtest/gtest.h>

#include "Wire/ota_stream.h"
#include "Wire/serial_frame.h"
#include "support/bytes.h"

namespace kavel::lidar {
namespace {

using Kind = SerialStreamFrame::Kind;

const Bytes kPointCloudFrame = {0x24, 0x4C, 0x44, 0x50, 0x54, 0x43, 0x2C, 0x01, 0x00, 0x00,
                                0x03, 0xAA, 0xBB, 0xCC, 0x2A, 0x8E, 0x58, 0xB5, 0xEE, 0xFF};

const Bytes kNoise = {0x00, '$', 'L', 'D', 0xEE, 0xFF, '$', '$', 'L', 'D', 'C', 'M', 'D', 0x2C + 1};

Bytes Answer() { return BuildSerialResponse({0x03, 0x2A, 0x00, 0x11, 0x22}); }

void Feed(SerialStream& stream, const Bytes& bytes) { stream.Append(bytes.data(), bytes.size()); }

std::vector<SerialStreamFrame> All(SerialStream& stream) {
  std::vector<SerialStreamFrame> frames;
  while (auto frame = stream.Next()) {
    frames.push_back(std::move(*frame));
  }
  return frames;
}

TEST(SerialStream, FindsFramesSplitAnywhereAndJoinedWithNoise) {
  ASSERT_EQ(BuildPointCloudFrame({0xAA, 0xBB, 0xCC}), kPointCloudFrame);
  const Bytes answer = Answer();
  const Bytes long_answer = BuildOtaFrame(OtaAnswer{1, 0x2B, 0, Bytes(600, '$')});
  const Bytes line = kNoise + answer + kPointCloudFrame + long_answer + kNoise + answer;
  for (size_t split = 0; split <= line.size(); ++split) {
    const auto middle = line.begin() + static_cast<std::ptrdiff_t>(split);
    SerialStream stream(SerialListener::kTool);
    Feed(stream, {line.begin(), middle});
    std::vector<SerialStreamFrame> frames = All(stream);
    Feed(stream, {middle, line.end()});
    for (SerialStreamFrame& frame : All(stream)) {
      frames.push_back(std::move(frame));
    }

    ASSERT_EQ(frames.size(), 4U) << "split at " << split;
    EXPECT_EQ(frames[0].bytes, answer);
    EXPECT_EQ(frames[1].bytes, kPointCloudFrame);
    EXPECT_EQ(frames[1].kind, Kind::kPointCloud);
    EXPECT_EQ(frames[2].bytes, long_answer);
    EXPECT_EQ(frames[2].kind, Kind::kLong);
    EXPECT_EQ(frames[3].bytes, answer);
    EXPECT_EQ(stream.skipped_bytes(), 2 * kNoise.size());
  }
}

TEST(SerialStream, TellsADamagedFrameFromAFrameBehindIt) {
  Bytes damaged = Answer();
  damaged[10] ^= 0x01;
  SerialStream stream(SerialListener::kTool);
  Feed(stream, damaged);
  std::vector<SerialStreamFrame> frames = All(stream);
  ASSERT_EQ(frames.size(), 1U);
  EXPECT_FALSE(frames[0].sound);
  EXPECT_EQ(frames[0].bytes, damaged);

  // Its beginning lost its end, and the length runs into the next frame.
  const Bytes sound = Answer();
  const Bytes cut = Bytes(sound.begin(), sound.begin() + 12) + sound + sound;
  Feed(stream, cut);
  frames = All(stream);
  ASSERT_EQ(frames.size(), 2U);
  EXPECT_TRUE(frames[0].sound && frames[1].sound);

  // What the line echoes is nothing, short or long, before an answer or alone.
  const Bytes echo = BuildSerialFrame(0x2A, {1}) + BuildOtaFrame(OtaRequest{1, 0x2A, Bytes(300)});
  Feed(stream, echo + sound + echo);
  frames = All(stream);
  ASSERT_EQ(frames.size(), 1U);
  EXPECT_EQ(frames[0].bytes, sound);
  stream.Clear();

  Bytes damaged_points = kPointCloudFrame;
  damaged_points[12] ^= 0x80;
  Feed(stream, damaged_points + sound);
  frames = All(stream);
  ASSERT_EQ(frames.size(), 1U);
  EXPECT_EQ(frames[0].bytes, sound);
}

TEST(SerialStream, GivesUpAFrameThatNeverEndsAndHoldsNoMoreThanItsBound) {
  const Bytes sound = Answer();
  const Bytes endless = {'$', 'L', 'D', 'O', 'T', 'A', ',', 0xFF, 0xFF, 0x00};
  SerialStream stream(SerialListener::kTool);
  Feed(stream, endless + sound);
  EXPECT_TRUE(All(stream).empty());
  EXPECT_EQ(stream.PendingLongFrame(), 0xFFFFU + 15);
  EXPECT_EQ(stream.Rest(), endless + sound);
  ASSERT_TRUE(stream.GiveUp());
  const std::vector<SerialStreamFrame> frames = All(stream);
  ASSERT_EQ(frames.size(), 1U);
  EXPECT_EQ(frames[0].bytes, sound);
  EXPECT_FALSE(stream.GiveUp());

  Feed(stream, endless);
  Feed(stream, Bytes(3 * SerialStream::kMaxHeld, '$'));
  EXPECT_LE(stream.held(), SerialStream::kMaxHeld);
  All(stream);
  EXPECT_LE(stream.Rest().size(), SerialStream::kMaxSkippedKept + SerialStream::kMaxHeld);
  Feed(stream, Answer());
  EXPECT_EQ(All(stream).size(), 1U);
}

}  // namespace
}  // namespace kavel::lidar
