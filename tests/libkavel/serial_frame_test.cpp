#include "CmxClient/serial_frame.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Wire/ota_stream.h"

namespace kavel::lidar {
namespace {

using Bytes = std::vector<uint8_t>;

const Bytes kCommandPrefix = {0x24, 0x4C, 0x44, 0x43, 0x4D, 0x44, 0x2C};
const Bytes kLongPrefix = {0x24, 0x4C, 0x44, 0x4F, 0x54, 0x41, 0x2C};

Bytes Join(const std::vector<Bytes>& parts) {
  Bytes all;
  for (const Bytes& part : parts) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

Bytes WithBitFlipped(Bytes bytes, size_t bit) {
  bytes[bit / 8] ^= static_cast<uint8_t>(1U << (bit % 8));
  return bytes;
}

// Worked out bit by bit, away from the code under test.
const Bytes kInner = {0x03, 0x2A, 0x00, 0x11, 0x22};
const Bytes kRandom = {0x04, 0x03, 0x02, 0x01};
const Bytes kResponse =
    Join({kCommandPrefix, kInner, kRandom, {0xE0, 0x32, 0x17, 0x3C}, {0xEE, 0xFF}});
const Bytes kResponseMode2 =
    Join({kCommandPrefix, kInner, kRandom, {0x3C, 0x17, 0x32, 0xE0}, {0xEE, 0xFF}});
const Bytes kRequest = Join(
    {kCommandPrefix, {0x03, 0x2A, 0x01, 0x02}, kRandom, {0xBA, 0x7F, 0xC8, 0xF3}, {0xEE, 0xFF}});

TEST(SerialFrame, TailFollowsItsMode) {
  Bytes firmware = Join({kLongPrefix, {0x01, 0x2A}});
  AppendSerialTail(firmware, 2);
  EXPECT_EQ(firmware, Join({kLongPrefix, {0x01, 0x2A, 0x2D, 0x08, 0xEA, 0x1A, 0xEE, 0xFF}}));
  for (const int mode : {0, 3, -1}) {
    Bytes bare = kCommandPrefix;
    AppendSerialTail(bare, mode);
    EXPECT_EQ(bare, Join({kCommandPrefix, {0xEE, 0xFF}}));
  }
}

TEST(SerialFrame, ResponseIsReadInBothByteOrders) {
  Bytes inner;
  EXPECT_TRUE(ParseSerialResponse(kResponse, inner));
  EXPECT_EQ(inner, kInner);
  inner.clear();
  EXPECT_TRUE(ParseSerialResponse(kResponseMode2, inner, 2));
  EXPECT_EQ(inner, kInner);
  EXPECT_FALSE(ParseSerialResponse(kResponse, inner, 2));

  Bytes other_prefix = kResponse;
  other_prefix[0] = 'x';
  EXPECT_TRUE(ParseSerialResponse(other_prefix, inner)) << "the prefix is not compared";
}

TEST(SerialFrame, EverySingleBitFlipBehindThePrefixIsRejected) {
  for (const int mode : {1, 2}) {
    const Bytes& sound = mode == 1 ? kResponse : kResponseMode2;
    for (size_t bit = kSerialPrefixSize * 8; bit < sound.size() * 8; ++bit) {
      const Bytes damaged = WithBitFlipped(sound, bit);
      Bytes inner = {0x99};
      EXPECT_FALSE(ParseSerialResponse(damaged, inner, mode)) << "mode " << mode << " bit " << bit;
      EXPECT_EQ(inner, Bytes{0x99});
    }
  }
}

TEST(SerialFrame, ResponseOfAnotherShapeIsRejected) {
  Bytes inner;
  // Sound in everything but its 18 bytes.
  const Bytes too_short =
      Join({kCommandPrefix, {0xFF}, kRandom, {0xEB, 0x96, 0xF7, 0x54}, {0xEE, 0xFF}});
  ASSERT_EQ(too_short.size(), 18U);
  EXPECT_FALSE(ParseSerialResponse(too_short, inner));
  // A request's length byte counts one byte more.
  EXPECT_FALSE(ParseSerialResponse(kRequest, inner));
  for (Bytes cut = kResponse; !cut.empty();) {
    cut.pop_back();
    EXPECT_FALSE(ParseSerialResponse(cut, inner)) << cut.size() << " bytes";
  }
}

TEST(SerialFrame, EachSideReadsWhatTheOtherWrites) {
  uint8_t cmd = 0;
  Bytes payload;
  ASSERT_TRUE(ParseSerialRequest(kRequest, &cmd, &payload));
  EXPECT_EQ(cmd, 0x2A);
  EXPECT_EQ(payload, (Bytes{0x01, 0x02}));
  EXPECT_FALSE(ParseSerialRequest(kResponse, &cmd, &payload)) << "a response is no request";
  for (const uint8_t size : Bytes{0, 1, 2, 3, 4, 254}) {
    const Bytes frame = BuildSerialFrame(0x2A, Bytes(size, 0x5A));
    ASSERT_EQ(frame.size(), 19U + size);
    EXPECT_EQ(Bytes(frame.begin(), frame.begin() + 7), kCommandPrefix);
    EXPECT_EQ(frame[7], size + 1);
    ASSERT_TRUE(ParseSerialRequest(frame, &cmd, &payload)) << int{size};
    EXPECT_EQ(payload, Bytes(size, 0x5A));

    Bytes inner(size + 3U, 0x33);
    inner[0] = static_cast<uint8_t>(size + 1);
    Bytes back;
    ASSERT_TRUE(ParseSerialResponse(BuildSerialResponse(inner), back)) << int{size};
    EXPECT_EQ(back, inner);
  }
  EXPECT_NE(BuildSerialFrame(0x2A, {}), BuildSerialFrame(0x2A, {})) << "the random value is fresh";
  EXPECT_TRUE(BuildSerialFrame(0x2A, Bytes(255)).empty());
  EXPECT_TRUE(BuildSerialResponse(Bytes(kSerialMaxInner + 1)).empty());
}

TEST(OtaStream, FramesHaveTheirBytes) {
  const Bytes request =
      Join({kLongPrefix, {0x00, 0x03, 0x2A, 0x01, 0x02}, {0xCA, 0xB8, 0xB4, 0xD7}, {0xEE, 0xFF}});
  const Bytes response =
      Join({kLongPrefix, {0x00, 0x03, 0x2A, 0x00, 0x77}, {0xEF, 0xC3, 0xFE, 0xEF}, {0xEE, 0xFF}});
  EXPECT_EQ(BuildOtaFrame(0x2A, {0x01, 0x02}), request);
  EXPECT_EQ(BuildOtaResponse(0x2A, 0, {0x77}), response);

  uint8_t cmd = 0;
  uint8_t return_code = 1;
  Bytes payload;
  ASSERT_TRUE(ParseOtaFrame(request, &cmd, &payload));
  EXPECT_EQ(cmd, 0x2A);
  EXPECT_EQ(payload, (Bytes{0x01, 0x02}));
  ASSERT_TRUE(ParseOtaResponse(response, &cmd, &return_code, &payload));
  EXPECT_EQ(return_code, 0);
  EXPECT_EQ(payload, Bytes{0x77});

  for (size_t bit = 0; bit < response.size() * 8; ++bit) {
    EXPECT_FALSE(ParseOtaResponse(WithBitFlipped(response, bit), &cmd, &return_code, &payload));
  }
  EXPECT_FALSE(ParseOtaResponse(BuildOtaFrame(0x2A, {}), &cmd, &return_code, &payload))
      << "no return code";
}

}  // namespace
}  // namespace kavel::lidar
