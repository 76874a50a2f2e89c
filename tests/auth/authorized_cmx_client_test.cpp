#include "auth/authorized_cmx_client.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "auth_test_support.h"
#include "support/scripted_sender.h"

namespace {

using Lines = std::vector<std::string>;
using Sent = ScriptedSender::Sent;

const Bytes kRandom = FromHex("a0a1a2a3a4a5a6a7a8a9aaabacadaeaf");
const Bytes kAnswer = {0x11, 0x22};

struct CollectedLines : kavel::lidar::LogSink {
  void WriteLine(const std::string& line) override { lines.push_back(line); }
  Lines lines;
};

struct FixedAnswer : IAuthAlgorithm {
  explicit FixedAnswer(Bytes bytes) : answer(std::move(bytes)) {}
  Bytes Compute(const Bytes& challenge) override {
    EXPECT_EQ(challenge, kRandom);
    return answer;
  }
  const Bytes answer;
};

AuthConfig TwoByteConfig() {
  AuthConfig config;
  config.enabled = true;
  config.protected_cmds = {0x21};
  config.probe_len = 2;
  return config;
}

/// A client over a scripted device, with everything that was sent and logged.
struct Bench {
  explicit Bench(std::deque<ScriptedSender::Reply> replies, AuthConfig config = TwoByteConfig(),
                 bool reply_prefix = false,
                 std::unique_ptr<IAuthAlgorithm> algorithm = std::make_unique<FixedAnswer>(kAnswer))
      : client(device, std::move(config), reply_prefix, log, std::move(algorithm)) {
    device->replies = std::move(replies);
  }
  /// Probes, and sends one command with payload 05.
  int32_t ProbeAndSend(uint8_t cmd) {
    client.Probe();
    return client.QueryCommand({5}, result, cmd, false, &error);
  }
  std::shared_ptr<ScriptedSender> device = std::make_shared<ScriptedSender>();
  std::shared_ptr<CollectedLines> log = std::make_shared<CollectedLines>();
  AuthorizedCmxClient client;
  Bytes result;
  int32_t error = 99;
};

const ScriptedSender::Reply kRequired = {0, {0, 1}};
const ScriptedSender::Reply kFailed = {kavel::lidar::kNoReply, {}};

TEST(AuthorizedCmxClient, ProbeDecidesByTheValueItIsToldToRead) {
  const char* const required = "AUTH: probe value=1 required=true";
  const char* const too_short = "AUTH: probe payload too short, treat as not-required";
  const std::tuple<Bytes, int32_t, int32_t, bool, bool, const char*> cases[] = {
      {{0, 1}, 0, 2, false, false, required},
      {{1, 0}, 0, 2, true, false, required},
      {{1, 0}, 0, 2, false, false, "AUTH: probe value=256 required=false"},
      {{9, 9, 9, 9, 7, 1}, 1, 1, false, true, required},
      {{9, 1}, -3, 1, false, true, required},
      {{1}, -1, 1, false, false, too_short},
      {{0, 1}, 0, 0, false, false, too_short},
      {{0, 1}, 1, 2, false, false, too_short},
      {{}, 0, 1, false, false, too_short},
      {{0, 1}, 0x7FFFFFFF, 0x7FFFFFFF, false, true, too_short},
  };
  for (const auto& [reply, offset, length, little, prefix, line] : cases) {
    AuthConfig config = TwoByteConfig();
    config.probe_offset = offset;
    config.probe_len = length;
    config.probe_little_endian = little;
    // After the probe the challenge fails, so that "required" shows as a refusal.
    Bench bench({{0, reply}}, config, prefix);
    bench.client.Probe();
    EXPECT_EQ(bench.log->lines, Lines{line});
    EXPECT_EQ(bench.client.Gate(0x21), line == required ? -1 : 0) << line;
  }
  Bench unanswered({kFailed});
  EXPECT_EQ(unanswered.ProbeAndSend(0x21), -1);
  EXPECT_EQ(unanswered.log->lines[0], "AUTH: probe failed, conservatively require auth");
}

TEST(AuthorizedCmxClient, EveryProtectedCommandGetsItsOwnHandshake) {
  Bench bench({kRequired, {0, kRandom}, {0, {}}, {0, {0x77}}, {0, kRandom}, {0, {}}, {0, {}}});
  EXPECT_EQ(bench.ProbeAndSend(0x21), 0);
  EXPECT_EQ(bench.error, 0);
  EXPECT_EQ(bench.result, Bytes{0x77});
  EXPECT_EQ(bench.device->quiet, 0);
  EXPECT_EQ(bench.client.QueryWithin(60000, {6}, bench.result, 0x21, nullptr), 0);
  EXPECT_EQ(bench.device->quiet, 3) << "the whole handshake stays out of the byte flow";
  const std::vector<Sent> expected = {{0xDF, {}}, {0x66, {}},      {0xE0, kAnswer}, {0x21, {5}},
                                      {0x66, {}}, {0xE0, kAnswer}, {0x21, {6}}};
  EXPECT_EQ(bench.device->sent, expected);

  Bench off({{0, {}}}, AuthConfig());
  EXPECT_EQ(off.ProbeAndSend(0x21), 0);
  EXPECT_EQ(off.device->sent, (std::vector<Sent>{{0x21, {5}}}));
}

TEST(AuthorizedCmxClient, TheLastStepDecidesAndIsNamed) {
  const char* const too_short = "AUTH: challenge payload too short for 16-byte random";
  const char* const waived = "AUTH: random all-zero, still valid, skip algorithm";
  using Replies = std::deque<ScriptedSender::Reply>;
  const std::tuple<const char*, Bytes, Replies, bool, Bytes> cases[] = {
      {"AUTH: challenge failed", {0x66}, {kFailed}, false, kAnswer},
      {too_short, {0x66}, {{0, Bytes(15, 1)}}, false, kAnswer},
      {too_short, {0x66}, {{0, Bytes(19, 1)}}, true, kAnswer},
      {"AUTH: algorithm compute failed", {0x66}, {{0, kRandom}}, false, {}},
      {"AUTH: response rejected", {0x66, 0xE0}, {{0, kRandom}, kFailed}, false, kAnswer},
      {waived, {0x66, 0x21}, {{0, Bytes{0, 0, 0, 42} + Bytes(16)}, kFailed}, true, kAnswer},
  };
  for (const auto& [line, sent_after_probe, replies, prefix, answer] : cases) {
    Bench bench(replies, TwoByteConfig(), prefix, std::make_unique<FixedAnswer>(answer));
    bench.device->replies.push_front({0, Bytes(prefix ? 4 : 0) + Bytes{0, 1}});
    EXPECT_EQ(bench.ProbeAndSend(0x21), -1);
    Bytes sent;
    for (const Sent& each : bench.device->sent) {
      sent.push_back(each.cmd);
    }
    EXPECT_EQ(sent, Bytes{0xDF} + sent_after_probe);
    Lines lines = {"AUTH: probe value=1 required=true", line};
    if (line != waived) {
      lines.emplace_back("AUTH: handshake failed for protected cmd");
    }
    EXPECT_EQ(bench.log->lines, lines);
    // Without a refusal it is the device's own reason.
    EXPECT_EQ(bench.error, line == waived ? kavel::lidar::kNoReply : kavel::lidar::kAuthRefused);
  }

  Bench no_algorithm({}, TwoByteConfig(), false, nullptr);
  EXPECT_EQ(no_algorithm.ProbeAndSend(0x21), -1);
  EXPECT_TRUE(no_algorithm.device->sent.empty());
  EXPECT_EQ(no_algorithm.log->lines,
            (Lines{"AUTH: algorithm unavailable, conservatively require auth",
                   "AUTH: unavailable, reject protected cmd"}));
}

/// Says yes to everything and hands out the challenge; notes any command between a response and its
/// protected command.
class OrderCheckingDevice : public kavel::lidar::CommandSender {
 public:
  bool IsOpen() override { return true; }
  using CommandSender::QueryCommand;
  int32_t QueryCommand(const Bytes&, Bytes& result, uint8_t cmd, bool, int32_t*) override {
    const int before = last_.exchange(cmd);
    torn = torn || (before == 0xE0) != (cmd == 0x21) || (before == 0x66) != (cmd == 0xE0);
    result = cmd == 0xDF ? Bytes{0, 1} : kRandom;
    return 0;
  }
  std::atomic<bool> torn{false};

 private:
  std::atomic<int> last_{0};
};

TEST(AuthorizedCmxClient, NoOtherThreadComesBetweenHandshakeAndCommand) {
  const auto device = std::make_shared<OrderCheckingDevice>();
  AuthorizedCmxClient client(device, TwoByteConfig(), false, nullptr,
                             std::make_unique<FixedAnswer>(kAnswer));
  client.Probe();
  const auto send = [&client](uint8_t cmd) {
    Bytes result;
    for (int i = 0; i < 2000; ++i) {
      client.QueryCommand({}, result, cmd, false);
    }
  };
  std::thread plain(send, uint8_t{0x20});
  send(0x21);
  plain.join();
  EXPECT_FALSE(device->torn);
}

}  // namespace
