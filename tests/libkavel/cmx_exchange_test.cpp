// One exchange, step by step, over a transport whose blocks the test cuts itself.

#include <gtest/gtest.h>

#include <atomic>
#include <deque>

#include "CmxClient/cmx_client.h"
#include "CmxClient/cmx_parser.h"
#include "CmxClient/file_transfer.h"
#include "libkavel/scripted_transport.h"
#include "support/log_lines.h"
#include "support/shown_bytes.h"

namespace kavel::lidar {
namespace {

using namespace testing;

class CmxExchangeTest : public ::testing::Test {
 protected:
  explicit CmxExchangeTest(uint8_t version = 1) : client(transport, version, 20, 20) {
    client.SetByteSink(sink);
  }

  int32_t Query(uint8_t cmd, bool with_header = false, const Bytes& payload = {}) {
    return client.QueryCommand(payload, result, cmd, with_header, &error);
  }

  const Bytes before = {0xEE};
  Bytes result = before;
  int32_t error = 99;
  std::shared_ptr<ScriptedTransport> transport = std::make_shared<ScriptedTransport>();
  std::shared_ptr<ShownBytes> sink = std::make_shared<ShownBytes>();
  CmxClient client;
};

class CmxExchangeTest2 : public CmxExchangeTest {
 protected:
  CmxExchangeTest2() : CmxExchangeTest(2) {}
};

TEST_F(CmxExchangeTest, BringsThePayload) {
  transport->answer = {{0x47, 0x74, 0x2A, 0, 0, 0, 0, 3}, {5}, {6, 7}};
  EXPECT_EQ(Query(0x2A, false, {1, 2}), 0);
  EXPECT_EQ(error, 0);
  EXPECT_EQ(result, (Bytes{5, 6, 7}));
  EXPECT_EQ(transport->sent, (std::vector<Bytes>{{0x47, 0x74, 0x2A, 0, 0, 0, 0, 2, 1, 2}}));
  EXPECT_EQ(sink->lines,
            (std::vector<std::string>{"SEND: 47 74 2a 00 00 00 00 02 01 02", "RECV: 05 06 07"}));
  transport->answer = {{0x47, 0x74, 7, 0, 0, 0, 0, 0}};
  EXPECT_EQ(Query(7), 0);
  EXPECT_EQ(result, (Bytes{5, 6, 7})) << "an empty payload leaves the result";
  EXPECT_EQ(sink->lines.back(), "RECV: 05 06 07");
}

TEST_F(CmxExchangeTest2, SpeaksVersion2) {
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

TEST_F(CmxExchangeTest, FindsTheHeaderBehindStrayBytes) {
  // The last block still holds a lone first identifier byte that starts nothing.
  transport->answer = {{1, 2, 3}, {0x47}, {0x74, 0x74, 0x47}, {9, 0x47, 0x74, 7, 0}, {0}, {0, 0},
                       {1},       {0x55}};
  EXPECT_EQ(Query(7), 0);
  EXPECT_EQ(result, Bytes{0x55});
}

TEST_F(CmxExchangeTest, NamesEveryFailure) {
  const Bytes header = {0x47, 0x74, 7, 0, 0, 0, 0, 4};
  const Bytes refusal = {0x47, 0x74, 7, 3, 0, 0, 0, 2};
  const struct {
    const char* what;
    std::deque<Bytes> answer;
    int32_t reason;
    bool with_header = false;
    int32_t short_by = 0;
    Bytes babble = {};
  } cases[] = {
      {"silence", {}, -2},
      {"closed", std::deque<Bytes>(1), -2},
      {"silence inside the header", {{0x47, 0x74, 7}}, -2},
      {"closed inside the header", {{0x47, 0x74, 7}, {}}, -2},
      {"a block of one byte starts no header", {{0x47}, {0x74}, {7}, {0}, {0}, {0}, {0}, {0}}, -2},
      {"babble without an end", {}, -2, false, 0, {1, 2, 3, 4}},
      {"silence inside the payload", {header, {1, 2}}, -3},
      {"closed inside the payload", {header, {1}, {}}, -3},
      {"a byte above 64 MiB", {{0x47, 0x74, 7, 0, 4, 0, 0, 1}, {1, 2, 3}}, -3},
      {"an answer to another command", {{0x47, 0x74, 8, 0, 0, 0, 0, 0}}, 0},
      {"refused", {refusal, {1, 2}}, 3},
      {"refused, the header asked for", {refusal, {1, 2}}, 3, true},
      {"not sent whole", {}, -4, false, 1},
  };
  LogLines log;
  for (const auto& each : cases) {
    SCOPED_TRACE(each.what);
    sink->lines.clear();
    transport->waiting.clear();
    transport->answer = each.answer;
    transport->short_by = each.short_by;
    transport->babble = each.babble;
    EXPECT_EQ(Query(7, each.with_header), -1);
    EXPECT_EQ(error, each.reason);
    EXPECT_EQ(result, each.with_header ? refusal : before) << "else left as it was";
    EXPECT_EQ(sink->lines,
              (std::vector<std::string>{"SEND: 47 74 07 00 00 00 00 00",
                                        "RECV: ret_code is " + std::to_string(each.reason)}));
    result = before;
  }
  transport->out_of_memory = true;
  EXPECT_EQ(Query(7), -1);
  EXPECT_EQ(error, kReplyBrokeOff);
  EXPECT_LE(transport->largest_receive, 65536U) << "no memory before the bytes arrive";
  EXPECT_EQ(log.Count(kWarning, "CmxClient::QueryCommand, RspCode invalid:0, return_cmd:8, cmd:7"),
            1);
  EXPECT_EQ(log.Count(kWarning, "send failure, 7."), 1);
}

TEST_F(CmxExchangeTest, AFrameBeyondOneSendIsRefusedUnsent) {
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

TEST_F(CmxExchangeTest, OnlyTroubleMakesTheCommandWaitForSilence) {
  client.SetStaleInput(StaleInput::kAfterTrouble);
  const std::deque<Bytes> clean = {{0x47, 0x74, 7, 0, 0, 0, 0, 0}};
  using Blocks = std::deque<Bytes>;
  const std::tuple<const char*, Blocks, Blocks, bool, int32_t> cases[] = {
      {"just connected", {}, clean, true, 0},
      {"nothing", {}, clean, false, 0},
      {"a byte was waiting", {{1}}, clean, true, 0},
      {"nothing", {}, {{9, 9, 0x47, 0x74, 7, 0, 0, 0}, {0, 0}}, false, 0},
      {"stray bytes came with the answer", {}, {{0x47, 0x74, 7, 1, 0, 0, 0, 0}}, true, 1},
      {"a refusal", {}, {}, false, kNoReply},
      {"no answer", {}, clean, true, 0},
      {"nothing", {}, clean, false, 0},
  };
  for (const auto& [what_was, stale, answer, waits, reason] : cases) {
    transport->timeouts.clear();
    transport->waiting = stale;
    transport->answer = answer;
    EXPECT_EQ(Query(7), reason == 0 ? 0 : -1) << what_was;
    EXPECT_EQ(error, reason) << what_was;
    EXPECT_EQ(transport->timeouts,
              waits ? (std::vector<uint32_t>{50, 20}) : std::vector<uint32_t>{})
        << what_was;
  }
}

TEST_F(CmxExchangeTest, FilesTravelInPiecesUnderLongTimeouts) {
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
  sender.SetByteSink(sink);
  EXPECT_EQ(TransferFile(sender, file, 0x1283, false, &pieces->progress, &error), 0);
  EXPECT_EQ(pieces->progress, 3);
  std::vector<Bytes> frames;
  CmxParser(1).CmxFilestreamSend(file, frames, 0x83);
  EXPECT_EQ(pieces->sent, frames);
  EXPECT_TRUE(sink->lines.empty()) << "a file would flood it";
  EXPECT_EQ(sender.QueryCommand({}, result, 7, false, &error), 0);
  EXPECT_EQ(pieces->timeouts, (std::vector<uint32_t>{30, 60000, 50, 60000, 30}));

  pieces->sent.clear();
  pieces->fail_at = 2;
  EXPECT_EQ(TransferFile(sender, file, 0x83, true, &pieces->progress, &error), -1);
  EXPECT_EQ(pieces->sent.size(), 2U) << "stops at the piece that failed";
  EXPECT_EQ(pieces->sent[0][2], 0xFF);
  EXPECT_EQ(error, 6);
  EXPECT_EQ(TransferFile(sender, {}, 0x83, false, nullptr, &error), -1);
  EXPECT_EQ(error, kBadArgument);
}

TEST(CmxClient, AnUnknownProtocolVersionFailsEveryExchange) {
  const auto transport = std::make_shared<ScriptedTransport>();
  CmxClient client(transport, 3, 20, 20);
  Bytes result;
  int32_t error = 0;
  EXPECT_EQ(client.QueryCommand({}, result, 7, false, &error), -1);
  EXPECT_EQ(error, -4);
  EXPECT_TRUE(transport->sent.empty());
}

}  // namespace
}  // namespace kavel::lidar
