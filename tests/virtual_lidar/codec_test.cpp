#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "CmxClient/ota_stream.h"
#include "CmxClient/serial_frame.h"
#include "cmx_codec.h"
#include "serial_codec.h"

namespace {

using Bytes = std::vector<uint8_t>;
using std::chrono::milliseconds;

const WireCodec::TimePoint kStart = WireCodec::TimePoint() + std::chrono::hours(1);

std::vector<DeviceRequest> Feed(WireCodec* codec, const Bytes& bytes, milliseconds at = {}) {
  return codec->Feed(bytes.data(), bytes.size(), kStart + at);
}

Bytes Joined(std::initializer_list<Bytes> parts) {
  Bytes all;
  for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

struct Framing {
  const char* name;
  std::unique_ptr<WireCodec> (*make)();
  Bytes request;  // command 0x2A with payload 01 02
};

class EveryFraming : public testing::TestWithParam<size_t> {
 protected:
  static const std::vector<Framing>& All() {
    static const std::vector<Framing> all = {
        {"Cmx1",
         []() -> std::unique_ptr<WireCodec> { return std::make_unique<CmxCodec>(1); },
         {0x47, 0x74, 0x2A, 0, 0, 0, 0, 2, 1, 2}},
        {"Cmx2",
         []() -> std::unique_ptr<WireCodec> { return std::make_unique<CmxCodec>(2); },
         {0x57, 0x75, 1, 0x2A, 0, 0, 0, 0, 0, 0, 0, 2, 1, 2}},
        {"SerialShort",
         []() -> std::unique_ptr<WireCodec> { return std::make_unique<SerialCodec>(); },
         kavel::lidar::BuildSerialFrame(0x2A, {1, 2})},
        {"SerialLong",
         []() -> std::unique_ptr<WireCodec> { return std::make_unique<SerialCodec>(); },
         kavel::lidar::BuildOtaFrame(0x2A, {1, 2})},
    };
    return all;
  }
  const Framing& framing() const { return All()[GetParam()]; }
  std::unique_ptr<WireCodec> codec_ = framing().make();
};

INSTANTIATE_TEST_SUITE_P(Codec, EveryFraming, testing::Range<size_t>(0, 4));

TEST_P(EveryFraming, FindsRequestsSplitJoinedAndAmidNoise) {
  const Bytes& request = framing().request;
  for (size_t i = 0; i + 1 < request.size(); ++i) {
    EXPECT_TRUE(Feed(codec_.get(), {request[i]}).empty()) << "byte " << i;
  }
  const auto found = Feed(codec_.get(), {request.back()});
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].code, 0x2A);
  EXPECT_EQ(found[0].payload, (Bytes{1, 2}));

  const Bytes noise = {0x47, '$', 'L', 0x57, 0x00, 0xFF, 0x47};
  EXPECT_EQ(Feed(codec_.get(), Joined({noise, request, request, noise, request})).size(), 3U);
}

TEST_P(EveryFraming, GivesAHalfFrameUpAfterItsTime) {
  const Bytes& request = framing().request;
  const Bytes half(request.begin(), request.end() - 1);
  EXPECT_TRUE(Feed(codec_.get(), half).empty());
  // In time, the late bytes belong to the frame that has begun.
  EXPECT_EQ(Feed(codec_.get(), {request.back()}, WireCodec::kHalfFrameLife).size(), 1U);

  EXPECT_TRUE(Feed(codec_.get(), half, milliseconds(2000)).empty());
  EXPECT_EQ(Feed(codec_.get(), request, milliseconds(3001)).size(), 1U);
}

TEST(CmxCodec, RefusesAnAbsurdLengthAndReadsOn) {
  CmxCodec codec(1);
  const auto found = Feed(&codec, Joined({{0x47, 0x74, 0x2A, 0, 0x7F, 0xFF, 0xFF, 0xFF},
                                          {0x47, 0x74, 0x07, 0, 0, 0, 0, 0}}));
  ASSERT_EQ(found.size(), 2U);
  EXPECT_TRUE(found[0].oversized);
  EXPECT_TRUE(found[0].payload.empty());
  EXPECT_EQ(found[1].code, 0x07);
  EXPECT_FALSE(found[1].oversized);
}

TEST(CmxCodec, FramesAnswersWithTheReturnCodeInItsPlace) {
  const DeviceReply reply{0x2A, 3, {9}, Aftermath::kNone, false};
  EXPECT_EQ(CmxCodec(1).Encode(reply), (Bytes{0x47, 0x74, 0x2A, 3, 0, 0, 0, 1, 9}));
  EXPECT_EQ(CmxCodec(2).Encode(reply), (Bytes{0x57, 0x75, 1, 0x2A, 3, 0, 0, 0, 0, 0, 0, 1, 9}));
}

TEST(SerialCodec, IgnoresARequestWithAWrongChecksum) {
  SerialCodec codec;
  Bytes broken = kavel::lidar::BuildSerialFrame(0x2A, {1, 2});
  broken[9] ^= 0x01;
  const auto found = Feed(&codec, Joined({broken, kavel::lidar::BuildSerialFrame(0x07, {})}));
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].code, 0x07);
}

TEST(SerialCodec, AnswersInTheFrameThatFits) {
  const SerialCodec codec;
  DeviceReply reply{0x2A, 3, {9, 8}, Aftermath::kNone, false};
  Bytes inner;
  ASSERT_TRUE(kavel::lidar::ParseSerialResponse(codec.Encode(reply), inner));
  EXPECT_EQ(inner, (Bytes{3, 0x2A, 3, 9, 8})) << "length, command, return code, payload";

  reply.payload.assign(300, 7);
  uint8_t command = 0;
  uint8_t return_code = 0;
  Bytes payload;
  ASSERT_TRUE(
      kavel::lidar::ParseOtaResponse(codec.Encode(reply), &command, &return_code, &payload));
  EXPECT_EQ(command, 0x2A);
  EXPECT_EQ(return_code, 3);
  EXPECT_EQ(payload, Bytes(300, 7));
}

}  // namespace
