#include "CmxClient/cmx_parser.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "CmxClient/fov_command.h"
#include "Wire/file_piece.h"
#include "support/scripted_sender.h"

namespace kavel::lidar {
namespace {

TEST(CmxParser, Version1CutsAValueOutOfAPayload) {
  CmxParser parser(1);
  const Bytes data = {10, 11, 12, 13};
  Bytes result;
  EXPECT_TRUE(parser.CmxStreamDecode(0, 0, data, 1, 3, result)) << "up to the very end";
  EXPECT_EQ(result, (Bytes{11, 12, 13}));

  constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
  const int32_t outside[][2] = {{1, 4}, {5, 0}, {-1, 2}, {2, -1}, {kMost, kMost}, {1, kMost}};
  for (const auto& [start, length] : outside) {
    EXPECT_FALSE(parser.CmxStreamDecode(0, 0, data, start, length, result)) << start << length;
  }
  EXPECT_EQ(result, (Bytes{11, 12, 13})) << "left as it was";
}

TEST(CmxParser, Version2DecodesByCommand) {
  const Bytes before = {9};
  const std::tuple<int, uint8_t, Bytes, Bytes, bool> cases[] = {
      {1, 0, {1, 2}, {1, 2}, true},   {9, 0, {}, {}, true},         {2, 0, {1, 2}, {1, 2}, false},
      {8, 0, {}, before, true},       {10, 0, {}, before, true},    {10, 5, {}, {9, 5}, false},
      {10, 0, {1, 2}, {9, 0}, false}, {0, 0, {1, 2}, before, true}, {11, 7, {1, 2}, before, true},
      {255, 0, {1}, before, true},
  };
  CmxParser parser(2);
  ::testing::internal::CaptureStdout();
  for (const auto& [cmd, fill, data, expected, outcome] : cases) {
    Bytes result = before;
    EXPECT_EQ(parser.CmxStreamDecode(static_cast<uint8_t>(cmd), fill, data, 0, 0, result), outcome);
    EXPECT_EQ(result, expected) << cmd;
  }
  const std::string line = "Cmx_2_0_parser::CmxStreamDecode success!\n";
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), line + line + line + line + line)
      << "for 1, 9, 0, 11 and 255";
}

TEST(CmxParser, CutsAFileIntoNumberedPieces) {
  Bytes file(2049, 0x31);
  file.back() = 0x39;
  std::vector<Bytes> frames = {{1}};  // what is there already stays
  ASSERT_TRUE(CmxParser(1).CmxFilestreamSend(file, frames, 0x21));
  ASSERT_EQ(frames.size(), 4U);
  EXPECT_EQ(frames[1].size(), 8U + 16 + 1024);
  EXPECT_EQ(Bytes(frames[2].begin(), frames[2].begin() + 20),
            (Bytes{0x47, 0x74, 0x21, 0, 0, 0, 0x04, 0x10,  // header, 1040 bytes follow
                   0,    0,    0,    0, 0, 0, 0,    2,    0, 0, 0, 3}));  // piece 2 of 3
  // The checksum of the single byte 0x39, worked out apart from the code under test.
  EXPECT_EQ(frames[3],
            (Bytes{0x47, 0x74, 0x21, 0, 0, 0, 0, 17,  //
                   0,    0,    0,    0, 0, 0, 0, 3,  0, 0, 0, 3, 0xB8, 0xF3, 0x22, 0x2B, 0x39}));

  // The device reads them, and tells what is wrong with one that is not whole.
  FilePiece piece;
  Bytes payload(frames[3].begin() + 8, frames[3].end());
  ASSERT_EQ(ParseFilePiece(payload, &piece), kAccepted);
  EXPECT_EQ(std::make_pair(piece.number, piece.count), std::make_pair(3U, 3U));
  EXPECT_EQ(Bytes(piece.data, piece.data + piece.size), Bytes{0x39});
  payload.back() ^= 1;
  EXPECT_EQ(ParseFilePiece(payload, &piece), kDamagedPiece);
  payload[7] = 2;
  EXPECT_EQ(ParseFilePiece(payload, &piece), kBadLength) << "only the last one may be short";
  payload[7] = 4;
  EXPECT_EQ(ParseFilePiece(payload, &piece), kBadValue);
  payload.pop_back();
  EXPECT_EQ(ParseFilePiece(payload, &piece), kBadLength);

  frames.clear();
  EXPECT_TRUE(CmxParser(1).CmxFilestreamSend({}, frames, 0x21));
  EXPECT_TRUE(CmxParser(2).CmxFilestreamSend(file, frames, 0x21));
  EXPECT_TRUE(frames.empty());
}

TEST(FovCommand, WritesFivePairsOfAngles) {
  ScriptedSender sender;
  const std::array<float, 10> degrees{0, 360, 0.5F, 1, 2, 3, 4, 5, 6, -1};
  SendFovTable(sender, degrees, 5, 1, nullptr);
  ASSERT_EQ(sender.sent.size(), 1U);
  EXPECT_EQ(sender.sent[0].cmd, 0x22);
  Bytes payload = sender.sent[0].payload;
  ASSERT_EQ(payload.size(), 42U);
  EXPECT_EQ(Bytes(payload.begin(), payload.begin() + 14),
            (Bytes{1, 5, 0, 0, 0, 0, 0x43, 0xB4, 0, 0, 0x3F, 0, 0, 0}));

  std::array<float, 10> read{};
  uint8_t mode = 0;
  ASSERT_TRUE(ParseFovTable(payload, &read, &mode));
  EXPECT_EQ(read, degrees);
  EXPECT_EQ(mode, 1);
  payload[1] = 4;
  EXPECT_FALSE(ParseFovTable(payload, &read, &mode));
  EXPECT_FALSE(ParseFovTable(Bytes(43, 5), &read, &mode));
}

}  // namespace
}  // namespace kavel::lidar
