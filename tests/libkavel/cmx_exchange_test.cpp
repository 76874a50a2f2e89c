// One exchange, step by step, over a transport whose blocks the test cuts itself.

#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "CmxClient/cmx_client.h"
#include "libkavel/scripted_transport.h"
#include "support/log_lines.h"

namespace kavel::lidar {
namespace {

using namespace testing;
using Bytes = std::vector<uint8_t>;

struct Lines : LogSink {
  void WriteLine(const std::string& line) override { lines.push_back(line); }
  std::vector<std::string> lines;
};

class CmxExchange : public ::testing::Test {
 protected:
  explicit CmxExchange(uint8_t version = 1) : client(transport, version, 20, 20) {
    client.SetLogSink(sink);
  }

  int32_t Query(uint8_t cmd, bool with_header = false, const Bytes& payload = {}) {
    return client.QueryCommand(payload, result, cmd, with_header, &error);
  }

  void ExpectFailure(int32_t reason, const std::string& received_line) {
    EXPECT_EQ(error, reason);
    EXPECT_EQ(client.GetLastErrorCode(), reason);
    EXPECT_EQ(result, before) << "left as it was";
    ASSERT_EQ(sink->lines.size(), 2U);
    EXPECT_EQ(sink->lines[1], received_line);
  }

  const Bytes before = {0xEE};
  Bytes result = before;
  int32_t error = 99;
  std::shared_ptr<ScriptedTransport> transport = std::make_shared<ScriptedTransport>();
  std::shared_ptr<Lines> sink = std::make_shared<Lines>();
  CmxClient client;
};

class CmxExchange2 : public CmxExchange {
 protected:
  CmxExchange2() : CmxExchange(2) {}
};

TEST_F(CmxExchange, BringsThePayload) {
  transport->answer = {{0x47, 0x74, 0x2A, 0, 0, 0, 0, 3}, {5}, {6, 7}};
  EXPECT_EQ(Query(0x2A, false, {1, 2}), 0);
  EXPECT_EQ(error, 0);
  EXPECT_EQ(result, (Bytes{5, 6, 7}));
  EXPECT_EQ(transport->sent, (std::vector<Bytes>{{0x47, 0x74, 0x2A, 0, 0, 0, 0, 2, 1, 2}}));
  EXPECT_EQ(sink->lines,
            (std::vector<std::string>{"SEND: 47 74 2a 00 00 00 00 02 01 02", "RECV: 05 06 07"}));
}

TEST_F(CmxExchange2, SpeaksVersion2) {
  LogLines log;
  transport->answer = {{0x57, 0x75, 9, 0x2A, 0, 1, 2, 3, 0, 0, 0, 1, 0x66}};
  EXPECT_EQ(Query(0x2A, true), 0);
  EXPECT_EQ(result, (Bytes{0x57, 0x75, 9, 0x2A, 0, 1, 2, 3, 0, 0, 0, 1, 0x66}));
  transport->answer = {{0x57, 0x75, 1, 0x2B, 7, 0, 0, 0, 0, 0, 0, 0}};
  EXPECT_EQ(Query(0x2A), -1);
  EXPECT_EQ(error, 7);
  EXPECT_EQ(log.Count(kWarning, "CmxClient::QueryCommand,RspCode invalid:7, return_cmd:43, cmd:42"),
            1);
}

TEST_F(CmxExchange, HeaderAndEmptyPayload) {
  transport->answer = {{0x47, 0x74, 7, 0, 0, 0, 0, 0}};
  EXPECT_EQ(Query(7), 0);
  EXPECT_EQ(result, before);
  EXPECT_EQ(sink->lines[1], "RECV: ee");
  transport->answer = {{0x47, 0x74, 7, 0, 0, 0, 0, 0}};
  EXPECT_EQ(Query(7, true), 0);
  EXPECT_EQ(result, (Bytes{0x47, 0x74, 7, 0, 0, 0, 0, 0}));
}

TEST_F(CmxExchange, FindsTheHeaderBehindStrayBytes) {
  // The last block still holds a lone first identifier byte that starts nothing.
  transport->answer = {{1, 2, 3}, {0x47}, {0x74, 0x74, 0x47}, {9, 0x47, 0x74, 7, 0}, {0}, {0, 0},
                       {1},       {0x55}};
  EXPECT_EQ(Query(7), 0);
  EXPECT_EQ(result, Bytes{0x55});
}

TEST_F(CmxExchange, ABlockOfOneByteStartsNoHeader) {
  for (const uint8_t byte : Bytes{0x47, 0x74, 7, 0, 0, 0, 0, 0})
    transport->answer.push_back({byte});
  EXPECT_EQ(Query(7), -1);
  ExpectFailure(-2, "RECV: ret_code is -2");
}

TEST_F(CmxExchange, SilenceAndClosingBeforeOrInsideTheHeader) {
  const std::vector<std::deque<Bytes>> answers = {
      {}, std::deque<Bytes>(1), {{0x47, 0x74, 7}}, {{0x47, 0x74, 7}, {}}};
  for (const auto& answer : answers) {
    sink->lines.clear();
    transport->waiting.clear();
    transport->answer = answer;
    EXPECT_EQ(Query(7), -1);
    ExpectFailure(-2, "RECV: ret_code is -2");
  }
}

TEST_F(CmxExchange, APayloadThatBreaksOff) {
  for (const std::deque<Bytes>& rest : {std::deque<Bytes>{{1, 2}}, std::deque<Bytes>{{1}, {}}}) {
    sink->lines.clear();
    transport->waiting.clear();
    transport->answer = rest;
    transport->answer.push_front({0x47, 0x74, 7, 0, 0, 0, 0, 4});
    EXPECT_EQ(Query(7, true), -1);
    ExpectFailure(-3, "RECV: ret_code is -3");
  }
}

TEST_F(CmxExchange, AnswerToAnotherCommand) {
  LogLines log;
  transport->answer = {{0x47, 0x74, 8, 0, 0, 0, 0, 0}};
  EXPECT_EQ(Query(7), -1);
  ExpectFailure(0, "RECV: ret_code is 0");
  EXPECT_EQ(log.Count(kWarning, "CmxClient::QueryCommand, RspCode invalid:0, return_cmd:8, cmd:7"),
            1);
}

TEST_F(CmxExchange, ARefusalLeavesItsHeaderWhenAskedFor) {
  transport->answer = {{0x47, 0x74, 7, 3, 0, 0, 0, 2}, {1, 2}};
  EXPECT_EQ(Query(7), -1);
  ExpectFailure(3, "RECV: ret_code is 3");
  transport->answer = {{0x47, 0x74, 7, 3, 0, 0, 0, 2}, {1, 2}};
  EXPECT_EQ(Query(7, true), -1);
  EXPECT_EQ(result, (Bytes{0x47, 0x74, 7, 3, 0, 0, 0, 2}));
}

TEST_F(CmxExchange, LargePayloadsOnlyWarn) {
  LogLines log;
  transport->answer = {{0x47, 0x74, 7, 0, 0, 0, 0x4E, 0x20}, Bytes(20000, 0x5A)};
  EXPECT_EQ(Query(7), 0);
  EXPECT_EQ(result, Bytes(20000, 0x5A));
  EXPECT_EQ(log.Count(kWarning, "CmxClient::QueryCommand, warning, nPayLoadLen too large:20000"),
            1);
}

TEST_F(CmxExchange, AnAbsurdLengthTakesNoMemoryBeforeBytesArrive) {
  transport->answer = {{0x47, 0x74, 7, 0, 0xFF, 0xFF, 0xFF, 0xFF}, {1, 2, 3}};
  EXPECT_EQ(Query(7), -1);
  ExpectFailure(-3, "RECV: ret_code is -3");
  EXPECT_LE(transport->largest_receive, 65536U);
}

TEST_F(CmxExchange, AFrameThatIsNotSentWhole) {
  LogLines log;
  transport->short_by = 1;
  transport->answer = {{0x47, 0x74, 7, 0, 0, 0, 0, 0}};
  EXPECT_EQ(Query(7), -1);
  ExpectFailure(-4, "RECV: ret_code is -4");
  EXPECT_EQ(transport->waiting.size(), 1U) << "nothing was received";
  EXPECT_EQ(log.Count(kWarning, "send failure, 7."), 1);
}

TEST_F(CmxExchange, AFrameBeyondOneSendIsRefusedUnsent) {
  EXPECT_EQ(Query(7, false, Bytes(65528)), -1);
  EXPECT_EQ(error, -4);
  EXPECT_EQ(sink->lines, std::vector<std::string>{"RECV: ret_code is -4"});
  EXPECT_TRUE(transport->sent.empty());
  transport->answer = {{0x47, 0x74, 7, 0, 0, 0, 0, 0}};
  EXPECT_EQ(Query(7, false, Bytes(65527)), 0);
}

TEST_F(CmxExchange, StaleBytesAreDroppedInEitherMode) {
  for (const StaleInput mode : {StaleInput::kAlways, StaleInput::kAfterTrouble}) {
    client.SetStaleInput(mode);
    for (int round = 0; round < 3; ++round) {
      transport->waiting = {{0x47, 0x74, 7, 0, 0, 0, 0, 0}, Bytes(3000, 1)};
      transport->answer = {{0x47, 0x74, 7, 0, 0, 0, 0, 1}, {0x21}};
      ASSERT_EQ(Query(7), 0);
      ASSERT_EQ(result, Bytes{0x21});
    }
  }
}

TEST_F(CmxExchange, OnlyTroubleMakesTheCommandWaitForSilence) {
  client.SetStaleInput(StaleInput::kAfterTrouble);
  const auto waits = [this](const std::deque<Bytes>& answer, const std::deque<Bytes>& stale = {}) {
    transport->timeouts.clear();
    transport->waiting = stale;
    transport->answer = answer;
    Query(7);
    return transport->timeouts == std::vector<uint32_t>{50, 20};
  };
  const std::deque<Bytes> clean = {{0x47, 0x74, 7, 0, 0, 0, 0, 0}};
  EXPECT_TRUE(waits(clean)) << "just connected";
  EXPECT_FALSE(waits(clean));
  EXPECT_TRUE(transport->timeouts.empty());
  EXPECT_TRUE(waits(clean, {{1}})) << "a byte was waiting";
  EXPECT_FALSE(waits({{9, 9, 0x47, 0x74, 7, 0, 0, 0}, {0, 0}}));
  EXPECT_TRUE(waits({{0x47, 0x74, 7, 1, 0, 0, 0, 0}})) << "stray bytes before the last answer";
  EXPECT_TRUE(waits({})) << "the last command was refused";
  EXPECT_TRUE(waits(clean)) << "the last command had no answer";
  EXPECT_FALSE(waits(clean));

  client.SetStaleInput(StaleInput::kAlways);
  EXPECT_TRUE(waits(clean));
  EXPECT_TRUE(waits(clean));
}

TEST_F(CmxExchange, ALidarThatBabblesHoldsNothing) {
  transport->babble = {1, 2, 3, 4};
  EXPECT_EQ(Query(7), -1);
  ExpectFailure(-2, "RECV: ret_code is -2");
}

TEST_F(CmxExchange, FilesTravelInPiecesUnderLongTimeouts) {
  struct Counting : ScriptedTransport {
    int32_t Send(uint8_t* data, uint16_t length, int32_t flags) override {
      seen.push_back(progress);
      answer = {
          {0x47, 0x74, data[2], static_cast<uint8_t>(progress == fail_at ? 6 : 0), 0, 0, 0, 0}};
      return ScriptedTransport::Send(data, length, flags);
    }
    std::atomic<int> progress{0};
    int fail_at = -1;
    std::vector<int> seen;
  };
  const auto counting = std::make_shared<Counting>();
  CmxClient sender(counting, 1, 30, 30);
  sender.SetStaleInput(StaleInput::kAfterTrouble);
  const Bytes file(2049, 0x39);
  EXPECT_EQ(sender.TransferFile(file, 0x1283, false, &counting->progress), 0);
  EXPECT_EQ(counting->seen, (std::vector<int>{1, 2, 3}));
  std::vector<Bytes> frames;
  CmxParser(1).CmxFilestreamSend(file, frames, 0x83);
  EXPECT_EQ(counting->sent, frames);
  EXPECT_EQ(counting->timeouts, (std::vector<uint32_t>{30, 60000, 50, 60000, 30}));

  counting->sent.clear();
  counting->fail_at = 2;
  EXPECT_EQ(sender.TransferFile(file, 0x83, true, &counting->progress), -1);
  EXPECT_EQ(counting->sent.size(), 2U) << "stops at the piece that failed";
  EXPECT_EQ(counting->sent[0][2], 0xFF);
  EXPECT_EQ(sender.GetLastErrorCode(), 6);
  EXPECT_EQ(counting->timeouts.back(), 30U);
}

TEST_F(CmxExchange2, FilesNeedVersion1) {
  EXPECT_EQ(client.TransferFile({1, 2, 3}, 0x83, false, nullptr), -1);
  EXPECT_TRUE(transport->sent.empty());
}

TEST(CmxClient, AnUnknownProtocolVersionFailsEveryExchange) {
  const auto transport = std::make_shared<ScriptedTransport>();
  CmxClient client(transport, 3, 20, 20);
  Bytes result;
  int32_t error = 0;
  EXPECT_EQ(client.QueryCommand({}, result, 7, false, &error), -1);
  EXPECT_EQ(error, -4);
  EXPECT_EQ(client.TransferFile({1}, 0x83, false, nullptr), -1);
  EXPECT_TRUE(transport->sent.empty());
}

TEST(CmxClient, EveryCodeHasAText) {
  EXPECT_EQ(CmxClient::ErrorText(17), "lidar return code 17");
  EXPECT_EQ(CmxClient::ErrorText(kBadReply), "the reply has an unexpected length");
  for (int32_t code = 0; code >= kBadReply; --code) {
    EXPECT_EQ(CmxClient::ErrorText(code).find("error"), std::string::npos) << code;
  }
}

}  // namespace
}  // namespace kavel::lidar
