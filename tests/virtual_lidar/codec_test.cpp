#include <gtest/gtest.h>

#include "Wire/ota_stream.h"
#include "Wire/serial_frame.h"
#include "support/bytes.h"
#include "wire/cmx_codec.h"
#include "wire/serial_codec.h"

namespace {

using std::chrono::milliseconds;

std::vector<DeviceRequest> Feed(WireCodec* codec, const Bytes& bytes, milliseconds at = {}) {
  static const WireCodec::TimePoint start = WireCodec::TimePoint() + std::chrono::hours(1);
  return codec->Feed(bytes.data(), bytes.size(), start + at);
}

template <typename Codec, typename... Arguments>
void ExpectFound(const Bytes& request, Arguments... arguments) {
  Codec codec(arguments...);
  for (size_t i = 0; i + 1 < request.size(); ++i) {
    EXPECT_TRUE(Feed(&codec, {request[i]}).empty()) << "byte " << i;
  }
  const auto found = Feed(&codec, {request.back()});
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].code, 0x2A);
  EXPECT_EQ(found[0].payload, (Bytes{1, 2}));

  const Bytes noise = {0x47, '$', 'L', 0x57, 0x00, 0xFF, 0x47};
  EXPECT_EQ(Feed(&codec, noise + request + request + noise + request).size(), 3U);

  // In time, late bytes belong to the frame that has begun; after that it is given up.
  const Bytes half(request.begin(), request.end() - 1);
  EXPECT_TRUE(Feed(&codec, half).empty());
  EXPECT_EQ(Feed(&codec, {request.back()}, WireCodec::kHalfFrameLife).size(), 1U);
  EXPECT_TRUE(Feed(&codec, half, milliseconds(2000)).empty());
  EXPECT_EQ(Feed(&codec, request, milliseconds(3001)).size(), 1U);
}

TEST(Codec, FindsRequestsSplitJoinedLateAndAmidNoise) {
  ExpectFound<CmxCodec>({0x47, 0x74, 0x2A, 0, 0, 0, 0, 2, 1, 2}, 1);
  ExpectFound<CmxCodec>({0x57, 0x75, 1, 0x2A, 0, 0, 0, 0, 0, 0, 0, 2, 1, 2}, 2);
  ExpectFound<SerialCodec>(kavel::lidar::BuildSerialFrame(0x2A, {1, 2}));
  ExpectFound<SerialCodec>(kavel::lidar::BuildOtaFrame(kavel::lidar::OtaRequest{9, 0x2A, {1, 2}}));
}

TEST(Codec, ReadsOnBehindAnAbsurdLengthAndAWrongChecksum) {
  CmxCodec codec(1);
  auto found = Feed(&codec, Bytes{0x47, 0x74, 0x2A, 0, 0x7F, 0xFF, 0xFF, 0xFF} +
                                Bytes{0x47, 0x74, 0x07, 0, 0, 0, 0, 0});
  ASSERT_EQ(found.size(), 2U);
  EXPECT_TRUE(found[0].oversized);
  EXPECT_TRUE(found[0].payload.empty());
  EXPECT_EQ(found[1].code, 0x07);
  EXPECT_FALSE(found[1].oversized);

  SerialCodec serial;
  Bytes broken = kavel::lidar::BuildSerialFrame(0x2A, {1, 2});
  broken[9] ^= 0x01;
  found = Feed(&serial, broken + kavel::lidar::BuildSerialFrame(0x07, {}));
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].code, 0x07);
}

}  // namespace
