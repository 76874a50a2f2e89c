#include "CmxClient/serial_frame.h"

#include <gtest/gtest.h>

#include "Wire/firmware_stream.h"
#include "Wire/ota_stream.h"
#include "support/bytes.h"

namespace kavel::lidar {
namespace {

const Bytes kCommandPrefix = FromHex("244c44434d442c");
const Bytes kLongPrefix = FromHex("244c444f54412c");

Bytes WithBitFlipped(Bytes bytes, size_t bit) {
  bytes[bit / 8] ^= static_cast<uint8_t>(1U << (bit % 8));
  return bytes;
}

// Worked out bit by bit, away from the code under test.
const Bytes kInner = {0x03, 0x2A, 0x00, 0x11, 0x22};
const Bytes kResponse = FromHex("244c44434d442c 032a001122 04030201 e032173c eeff");
const Bytes kResponseMode2 = FromHex("244c44434d442c 032a001122 04030201 3c1732e0 eeff");
const Bytes kRequest = FromHex("244c44434d442c 032a0102 04030201 ba7fc8f3 eeff");

TEST(SerialFrame, TailFollowsItsMode) {
  Bytes firmware = kLongPrefix + Bytes{0x01, 0x2A};
  AppendSerialTail(firmware, 2);
  EXPECT_EQ(firmware, kLongPrefix + FromHex("012a 2d08ea1a eeff"));
  for (const int mode : {0, 3, -1}) {
    Bytes bare = kCommandPrefix;
    AppendSerialTail(bare, mode);
    EXPECT_EQ(bare, kCommandPrefix + FromHex("eeff"));
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
  const Bytes too_short = FromHex("244c44434d442c ff 04030201 eb96f754 eeff");
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

TEST(OtaStream, FramesHaveTheirBytesAndTheirDirection) {
  const Bytes request = FromHex("244c444f54412c 0005 51 09 2a 0102 64f41e67 eeff");
  const Bytes answer = FromHex("244c444f54412c 0005 41 09 2a 00 77 35e459db eeff");
  EXPECT_EQ(BuildOtaFrame(OtaRequest{9, 0x2A, {0x01, 0x02}}), request);
  EXPECT_EQ(BuildOtaFrame(OtaAnswer{9, 0x2A, 0, {0x77}}), answer);

  OtaRequest read;
  ASSERT_TRUE(ParseOtaFrame(request, &read));
  EXPECT_EQ(read.number, 9);
  EXPECT_EQ(read.cmd, 0x2A);
  EXPECT_EQ(read.payload, (Bytes{0x01, 0x02}));
  EXPECT_FALSE(ParseOtaFrame(answer, &read)) << "goes the other way";
  OtaAnswer reply;
  ASSERT_TRUE(ParseOtaFrame(answer, &reply));
  EXPECT_EQ(reply.number, 9);
  EXPECT_EQ(reply.cmd, 0x2A);
  EXPECT_EQ(reply.return_code, 0);
  EXPECT_EQ(reply.payload, Bytes{0x77});
  EXPECT_FALSE(ParseOtaFrame(request, &reply)) << "an echo is no answer";

  for (size_t bit = 0; bit < answer.size() * 8; ++bit) {
    EXPECT_FALSE(ParseOtaFrame(WithBitFlipped(answer, bit), &reply)) << bit;
  }
  // A sound frame that ends where its return code should stand.
  EXPECT_FALSE(ParseOtaFrame(FromHex("244c444f54412c 0003 41 09 2a d4ad8b09 eeff"), &reply));
}

// An image of five bytes for the application, in the frames 9 to 11.
TEST(FirmwareStream, HasItsBytesAndJudgesWhatItReads) {
  const Bytes image = {1, 2, 3, 4, 5};
  const StreamImage whole = DescribeImage(kApplicationImage, image);
  const Bytes begin = BuildStreamBegin(whole);
  const Bytes piece = BuildStreamPiece(kApplicationImage, image, 1);
  const Bytes end = BuildStreamEnd(whole, AfterImage::kRestart);
  const std::pair<Bytes, const char*> frames[] = {
      {BuildOtaFrame(OtaRequest{9, kCmdStreamBegin, begin}),
       "244c444f54412c 000c510950 02000000 05470b99f4 30d77c03 eeff"},
      {BuildOtaFrame(OtaAnswer{9, kCmdStreamBegin, kAccepted, {}}),
       "244c444f54412c 0004410950 00 b5d6c51d eeff"},
      {BuildOtaFrame(OtaRequest{10, kCmdStreamPiece, piece}),
       "244c444f54412c 0011510a51 02000000 01e28f4b83 0102030405 5b8853af eeff"},
      {BuildOtaFrame(OtaAnswer{10, kCmdStreamPiece, kAccepted, BuildStreamAck(1)}),
       "244c444f54412c 0008410a51 00 00000001 c1e70d99 eeff"},
      {BuildOtaFrame(OtaRequest{11, kCmdStreamEnd, end}),
       "244c444f54412c 000d510b52 02000000 05470b99f4 01 e5a52b1c eeff"},
  };
  for (const auto& [built, bytes] : frames) {
    EXPECT_EQ(built, FromHex(bytes));
  }

  StreamImage read;
  StreamPiece part;
  AfterImage then = AfterImage::kStay;
  EXPECT_EQ(ParseStreamBegin(begin, &read), kAccepted);
  EXPECT_EQ(read, whole);
  EXPECT_EQ(ParseStreamEnd(end, &read, &then), kAccepted);
  EXPECT_EQ(then, AfterImage::kRestart);
  ASSERT_EQ(ParseStreamPiece(piece, &part), kAccepted);
  EXPECT_EQ(Bytes(part.data, part.data + part.size), image);
  const std::tuple<const char*, ReturnCode, ReturnCode> refused[] = {
      {"the rest of a piece", ParseStreamPiece({piece.begin(), piece.begin() + 9}, &part),
       kBadLength},
      {"one flipped bit", ParseStreamPiece(WithBitFlipped(piece, 72), &part), kDamagedPiece},
      {"piece 0", ParseStreamPiece(WithBitFlipped(piece, 32), &part), kBadValue},
      {"component 6", ParseStreamPiece(WithBitFlipped(piece, 2), &part), kBadValue},
      {"an end for a beginning", ParseStreamBegin(end, &read), kBadLength},
      {"component 6", ParseStreamBegin(WithBitFlipped(begin, 2), &read), kBadValue},
      {"no bytes", ParseStreamBegin({2, 0, 0, 0, 0, 0, 0, 0, 0}, &read), kBadValue},
      {"above 64 MiB", ParseStreamBegin({2, 4, 0, 0, 1, 0, 0, 0, 0}, &read), kBadValue},
      {"another end", ParseStreamEnd(WithBitFlipped(end, 73), &read, &then), kBadValue},
  };
  for (const auto& [what, got, expected] : refused) {
    EXPECT_EQ(got, expected) << what;
  }
}

}  // namespace
}  // namespace kavel::lidar
