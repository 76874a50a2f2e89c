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

  void ExpectFailure(int32_t reason) {
    EXPECT_EQ(error, reason);
    EXPECT_EQ(result, before) << "left as it was";
    ASSERT_EQ(sink->lines.size(), 2U);
    EXPECT_EQ(sink->lines[1], "RECV: ret_code is " + std::to_string(reason));
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

TEST_F(CmxExchange, AnEmptyPayloadLeavesTheResult) {
  transport->answer = {{0x47, 0x74, 7, 0, 0, 0, 0, 0}};
  EXPECT_EQ(Query(7), 0);
  EXPECT_EQ(result, before);
  EXPECT_EQ(sink->lines[1], "RECV: ee");
}

TEST_F(CmxExchange, FindsTheHeaderBehindStrayBytes) {
  // The last block still holds a lone first identifier byte that starts nothing.
  transport->answer = {{1, 2, 3}, {0x47}, {0x74, 0x74, 0x47}, {9, 0x47, 0x74, 7, 0}, {0}, {0, 0},
                       {1},       {0x55}};
  EXPECT_EQ(Query(7), 0);
  EXPECT_EQ(result, Bytes{0x55});
}

TEST_F(CmxExchange, NamesEveryFailure) {
  const Bytes header = {0x47, 0x74, 7, 0, 0, 0, 0, 4};
  struct Case {
    const char* what;
    std::deque<Bytes> answer;
    int32_t reason;
  };
  const Case cases[] = {
      {"silence", {}, -2},
      {"closed", std::deque<Bytes>(1), -2},
      {"silence inside the header", {{0x47, 0x74, 7}}, -2},
      {"closed inside the header", {{0x47, 0x74, 7}, {}}, -2},
      {"a block of one byte starts no header", {{0x47}, {0x74}, {7}, {0}, {0}, {0}, {0}, {0}}, -2},
      {"silence inside the payload", {header, {1, 2}}, -3},
      {"closed inside the payload", {header, {1}, {}}, -3},
      {"an absurd length", {{0x47, 0x74, 7, 0, 0xFF, 0xFF, 0xFF, 0xFF}, {1, 2, 3}}, -3},
      {"an answer to another command", {{0x47, 0x74, 8, 0, 0, 0, 0, 0}}, 0},
      {"refused", {{0x47, 0x74, 7, 3, 0, 0, 0, 2}, {1, 2}}, 3},
  };
  LogLines log;
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    sink->lines.clear();
    transport->waiting.clear();
    transport->answer = each.answer;
    EXPECT_EQ(Query(7), -1);
    ExpectFailure(each.reason);
  }
  EXPECT_LE(transport->largest_receive, 65536U) << "no memory before the bytes arrive";
  EXPECT_EQ(log.Count(kWarning, "CmxClient::QueryCommand, RspCode invalid:0, return_cmd:8, cmd:7"),
            1);
}

TEST_F(CmxExchange, ALidarThatBabblesHoldsNothing) {
  transport->babble = {1, 2, 3, 4};
  EXPECT_EQ(Query(7), -1);
  ExpectFailure(-2);
}

TEST_F(CmxExchange, ARefusalLeavesItsHeaderWhenAskedFor) {
  transport->answer = {{0x47, 0x74, 7, 3, 0, 0, 0, 2}, {1, 2}};
  EXPECT_EQ(Query(7, true), -1);
  EXPECT_EQ(result, (Bytes{0x47, 0x74, 7, 3, 0, 0, 0, 2}));
}

TEST_F(CmxExchange, AFrameThatIsNotSentWhole) {
  LogLines log;
  transport->short_by = 1;
  EXPECT_EQ(Query(7), -1);
  ExpectFailure(-4);
  EXPECT_EQ(log.Count(kWarning, "send failure, 7."), 1);
}

TEST_F(CmxExchange, AFrameBeyondOneSendIsRefusedUnsent) {
  EXPECT_EQ(Query(7, false, Bytes(65528)), -1);
  EXPECT_EQ(error, -4);
  EXPECT_EQ(sink->lines, std::vector<std::string>{"RECV: ret_code is -4"});
  EXPECT_TRUE(transport->sent.empty());
  // As much as one send takes, and an answer whose size is only worth a warning.
  LogLines log;
  transport->answer = {{0x47, 0x74, 7, 0, 0, 0, 0x4E, 0x20}, Bytes(20000, 0x5A)};
  EXPECT_EQ(Query(7, false, Bytes(65527)), 0);
  EXPECT_EQ(result, Bytes(20000, 0x5A));
  EXPECT_EQ(log.Count(kWarning, "CmxClient::QueryCommand, warning, nPayLoadLen too large:20000"),
            1);
}

TEST_F(CmxExchange, OnlyTroubleMakesTheCommandWaitForSilence) {
  client.SetStaleInput(StaleInput::kAfterTrouble);
  const std::deque<Bytes> clean = {{0x47, 0x74, 7, 0, 0, 0, 0, 0}};
  const struct {
    const char* before;
    std::deque<Bytes> stale, answer;
    bool waits;
  } cases[] = {
      {"just connected", {}, clean, true},
      {"nothing", {}, clean, false},
      {"a byte was waiting", {{1}}, clean, true},
      {"nothing", {}, {{9, 9, 0x47, 0x74, 7, 0, 0, 0}, {0, 0}}, false},
      {"stray bytes came with the answer", {}, {{0x47, 0x74, 7, 1, 0, 0, 0, 0}}, true},
      {"a refusal", {}, {}, true},
      {"no answer", {}, clean, true},
      {"nothing", {}, clean, false},
  };
  for (const auto& each : cases) {
    transport->timeouts.clear();
    transport->waiting = each.stale;
    transport->answer = each.answer;
    Query(7);
    EXPECT_EQ(transport->timeouts,
              each.waits ? (std::vector<uint32_t>{50, 20}) : std::vector<uint32_t>{})
        << each.before;
  }
}

TEST_F(CmxExchange, FilesTravelInPiecesUnderLongTimeouts) {
  struct AnswersPieces : ScriptedTransport {
    int32_t Send(uint8_t* data, uint16_t length, int32_t flags) override {
      answer = {
          {0x47, 0x74, data[2], static_cast<uint8_t>(progress == fail_at ? 6 : 0), 0, 0, 0, 0}};
      return ScriptedTransport::Send(data, length, flags);
    }
    std::atomic<int> progress{0};
    int fail_at = -1;
  };
  const auto pieces = std::make_shared<AnswersPieces>();
  CmxClient sender(pieces, 1, 30, 30);
  sender.SetStaleInput(StaleInput::kAfterTrouble);
  const Bytes file(2049, 0x39);
  EXPECT_EQ(sender.TransferFile(file, 0x1283, false, &pieces->progress), 0);
  EXPECT_EQ(pieces->progress, 3);
  std::vector<Bytes> frames;
  CmxParser(1).CmxFilestreamSend(file, frames, 0x83);
  EXPECT_EQ(pieces->sent, frames);
  EXPECT_EQ(pieces->timeouts, (std::vector<uint32_t>{30, 60000, 50, 60000, 30}));

  pieces->sent.clear();
  pieces->fail_at = 2;
  EXPECT_EQ(sender.TransferFile(file, 0x83, true, &pieces->progress), -1);
  EXPECT_EQ(pieces->sent.size(), 2U) << "stops at the piece that failed";
  EXPECT_EQ(pieces->sent[0][2], 0xFF);
  EXPECT_EQ(sender.GetLastErrorCode(), 6);
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

}  // namespace
}  // namespace kavel::lidar
