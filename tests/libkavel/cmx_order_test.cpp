// Answers that come late, twice, cut, or not at all, and how long they may take: in a time of its
// own.

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

#include "CmxClient/cmx_exchange.h"
#include "CmxClient/command_sender.h"
#include "Wire/cmx_header.h"
#include "libkavel/simulated_line.h"
#include "support/bytes.h"

namespace kavel::lidar {
namespace {

using std::chrono::milliseconds;
using testing::SimulatedLine;

constexpr uint32_t kTimeoutMs = 500;
constexpr uint8_t kLiveness = 0x07;
constexpr int kFated = 4;  ///< so many answers have a fate, later ones come in time

enum Fate { kInTime, kLateBy1, kLateBy2, kLateBy3, kTwice, kLost, kCut, kOtherCode, kFates };

/// Answers each command with its number, and each answer has its fate.
struct Lidar {
  Lidar(SimulatedLine& to, std::vector<int> answer_fates, milliseconds copies_come_after)
      : line(to), fates(std::move(answer_fates)), copy_after(copies_come_after) {
    line.on_sent = [this](const Bytes& frame) { Answer(frame[kCmxHeader1.command_at]); };
  }

  void Answer(uint8_t cmd) {
    const auto number = static_cast<uint8_t>(asked.size());
    const int fate = number < fates.size() ? fates[number] : kInTime;
    asked.push_back(cmd);
    if (fate == kOtherCode) {
      cmd ^= 0x80;
    }
    Bytes frame = BuildCmxFrame(kCmxHeader1, cmd, 0, {number, number, number, number});
    if (fate == kCut) {
      frame.resize(10);
    }
    const auto late_by = static_cast<uint32_t>(fate >= kLateBy1 && fate <= kLateBy3 ? fate : 0);
    if (fate != kLost) {
      line.Arrive(milliseconds(1 + late_by * (kTimeoutMs + 60)), frame);
    }
    if (fate == kTwice) {
      line.Arrive(milliseconds(1) + copy_after, frame);
    }
  }

  SimulatedLine& line;
  const std::vector<int> fates;
  const milliseconds copy_after;
  Bytes asked;  ///< the commands in their order
};

std::vector<int> FatesOf(int order, int count) {
  std::vector<int> fates;
  for (; count > 0; --count, order /= kFates) {
    fates.push_back(order % kFates);
  }
  return fates;
}

// Runs the commands through one order of fates. Answers to the liveness command all say the same
// and may stand for one another; every other one must be the command's own.
void RunThrough(const std::vector<int>& fates, const Bytes& commands, milliseconds pause,
                milliseconds copy_after = milliseconds(0)) {
  const auto line = std::make_shared<SimulatedLine>();
  Lidar lidar(*line, fates, copy_after);
  CmxExchange exchange(line, 1, {kTimeoutMs, kTimeoutMs}, line->clock());
  exchange.SetStaleInput(StaleInput::kAfterTrouble);
  exchange.SetLivenessCommand(kLiveness);
  bool recovered = false;
  for (const uint8_t cmd : commands) {
    const CmxExchange::Outcome outcome = exchange.Run(cmd, {}, nullptr);
    recovered = outcome.accepted;
    line->Pass(pause);
    if (!outcome.accepted) {
      continue;
    }
    ASSERT_EQ(outcome.payload.size(), 4U);
    const uint8_t answered = outcome.payload[0];
    const bool is_own = answered + 1U == lidar.asked.size();
    const bool is_alike = cmd == kLiveness && lidar.asked[answered] == kLiveness;
    ASSERT_TRUE(is_own || is_alike) << "command " << int{cmd} << " got the answer to number "
                                    << int{answered} << " of " << lidar.asked.size();
  }
  ASSERT_TRUE(lidar.asked == commands || fates != FatesOf(0, kFated)) << "all was well";
  ASSERT_TRUE(recovered) << "a lidar that answers again is not understood";
}

TEST(CmxOrder, NoCommandEverGetsTheAnswerToAnother) {
  const int orders = kFates * kFates * kFates * kFates;
  const Bytes data(9, 0x31);
  const Bytes mixed = {0x31, kLiveness, 0x31, 0x32, 0x31, 0x31, kLiveness, 0x31, 0x31};
  const Bytes checks = {kLiveness, 0x08, 0x31, kLiveness, 0x08, 0x31, 0x31, 0x31, 0x31};
  const Bytes alive(9, kLiveness);
  for (const Bytes& commands : {data, mixed, checks, alive}) {
    for (int order = 0; order < 2 * orders; ++order) {
      RunThrough(FatesOf(order % orders, kFated), commands, milliseconds(order < orders ? 0 : 700));
      ASSERT_FALSE(HasFatalFailure()) << "order " << order << " of commands starting with "
                                      << int{commands[0]} << ", " << int{commands[1]};
    }
  }
}

TEST(CmxOrder, ALidarThatAnswersEverythingTwiceIsUnderstood) {
  const Bytes commands = {0x31, 0x32, 0x31, 0x31, kLiveness, 0x31, 0x32};
  for (auto end = commands.begin() + 3; end <= commands.end(); ++end) {
    RunThrough(std::vector<int>(99, kTwice), {commands.begin(), end}, milliseconds(0),
               milliseconds(20));
  }
}

TEST(CmxOrder, AnAnswerHasItsTime) {
  const auto line = std::make_shared<SimulatedLine>();
  const Bytes header = {0x47, 0x74, 0x31, 0, 0, 0, 0, 25};
  const struct {
    const char* what;
    Bytes head;
    size_t drops;
    uint32_t drop_ms;
    int32_t error;
    uint32_t least_ms;
  } cases[] = {
      {"a payload in time", header, 25, 19, 0, 475},
      {"a payload byte by byte", header, 25, 400, kReplyBrokeOff, 500},
      {"a header byte by byte", {}, 8, 400, kNoReply, 500},
      {"a second for 64 KiB", {0x47, 0x74, 0x31, 0, 0, 1, 0, 0}, 65536, 1, kReplyBrokeOff, 1500},
      {"64 MiB and a byte", {0x47, 0x74, 0x31, 0, 4, 0, 0, 1}, 0, 0, kReplyBrokeOff, 0},
  };
  for (const auto& each : cases) {
    CmxExchange fresh(line, 1, {kTimeoutMs, kTimeoutMs}, line->clock());
    line->Pass(milliseconds(100000));
    milliseconds sent_at{0};
    line->on_sent = [&](const Bytes&) {
      sent_at = line->now();
      line->Arrive(milliseconds(1), each.head);
      for (size_t i = 0; i < each.drops; ++i) {
        const uint8_t byte = each.head.empty() ? header[i] : uint8_t{0};
        line->Arrive(milliseconds(1 + (i + 1) * each.drop_ms), {byte});
      }
    };
    EXPECT_EQ(fresh.Run(0x31, {}, nullptr).error, each.error) << each.what;
    const milliseconds took = line->now() - sent_at;
    EXPECT_GE(took.count(), each.least_ms) << each.what;
    EXPECT_LE(took.count(), each.least_ms + 10) << each.what;
  }
}

}  // namespace
}  // namespace kavel::lidar
