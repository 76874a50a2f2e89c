// Answers that come late, twice, cut, or not at all, and how long they may take: in a time of its
// own.

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

#include "CmxClient/command_sender.h"
#include "CmxClient/hex_text.h"
#include "libkavel/fated_answers.h"
#include "support/bytes.h"

namespace kavel::lidar {
namespace {

using std::chrono::milliseconds;
using namespace testing;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kStep = 7;  // one order of so many
#else
constexpr int kStep = 1;
#endif

struct Command {
  uint8_t cmd = 0;
  Bytes payload = {};
};

struct Setting {
  const char* what;
  std::vector<Command> commands;  ///< asked again and again
  milliseconds pause{0};          ///< between them
  uint8_t version = 1;
  Bytes payload = {0, 0, 0};   ///< of each answer, behind its number
  milliseconds copy_after{0};  ///< a second copy comes behind the first
};

/// Answers each command with its number, and each answer has its fate.
class Lidar {
 public:
  Lidar(SimulatedLine& to, const Setting& setting, const Bytes& fates)
      : line_(to), layout_(*CmxHeaderOf(setting.version)), setting_(setting), fates_(fates) {
    line_.on_sent = [this](const Bytes& frame) { Answer(frame); };
  }

  bool fates_are_over() const { return asked_.size() >= fates_.size(); }
  size_t asked() const { return asked_.size(); }

  bool WasAsked(size_t first, const Command& command) const {
    return asked_.size() > first && asked_.back().is_liveness == command.payload.empty();
  }

  /// Whether the answer with this number may be handed to the command that left last. Those to the
  /// liveness command all say the same and may stand for one another.
  bool MayAnswerTheLast(uint8_t number) const {
    return number + 1U == asked_.size() ||
           (number < asked_.size() && asked_.back().is_liveness && asked_[number].is_liveness);
  }

  /// Whether the commands from number `first` on had what it takes: each its answer in time, and
  /// none came since `began` that spoils another one: a cut one takes the beginning of the next for
  /// its end, one with another code ends the wait for the right one.
  bool AnsweredWell(size_t first, milliseconds began) const {
    for (size_t i = 0; i < asked_.size(); ++i) {
      const Asked& each = asked_[i];
      const bool spoils = each.fate == kCut || each.fate == kOtherCode ||
                          (each.fate == kTwice && setting_.copy_after.count() > 0);
      const bool in_time = each.fate == kInTime || each.fate == kTwice;
      if ((spoils && each.answered_at >= began) ||
          (i >= first && (!in_time || each.answered_at >= each.at + milliseconds(kTimeoutMs)))) {
        return false;
      }
    }
    return true;
  }

 private:
  struct Asked {
    int fate;
    bool is_liveness;
    milliseconds at, answered_at;
  };

  void Answer(const Bytes& request) {
    const auto number = static_cast<uint8_t>(asked_.size());
    const int fate = fates_are_over() ? int{kInTime} : fates_[number];
    const uint8_t cmd = request[layout_.command_at];
    const bool is_liveness = cmd == kLiveness && request.size() == layout_.size;
    const milliseconds at = line_.now();
    const milliseconds answered_at = Arrive(
        line_, fate, layout_, BuildCmxFrame(layout_, cmd, 0, Bytes{number} + setting_.payload),
        setting_.copy_after);
    asked_.push_back({fate, is_liveness, at, answered_at});
  }

  SimulatedLine& line_;
  const CmxHeaderLayout& layout_;
  const Setting& setting_;
  const Bytes fates_;
  std::vector<Asked> asked_;
};

Bytes FatesOf(int order) {
  Bytes fates;
  for (int i = 0; i < kFated; ++i) {
    fates.push_back(static_cast<uint8_t>(TakeFate(&order)));
  }
  return fates;
}

// Asks one command after another until all fates are over, nothing is on its way any more and two
// commands were answered. What was handed out must be the command's own, and one that fails must
// not have been answered, nor the liveness commands ahead of it.
void RunThrough(const Bytes& fates, const Setting& setting) {
  const auto line = std::make_shared<SimulatedLine>();
  Lidar lidar(*line, setting, fates);
  ExchangeOver exchange(line, setting.version);
  int in_step = 0;
  for (size_t i = 0; in_step < 2; ++i) {
    ASSERT_LT(i, 40U) << "a lidar that answers again is not understood";
    const Command& command = setting.commands[i % setting.commands.size()];
    const size_t first = lidar.asked();
    const milliseconds began = line->now();
    const bool is_over = lidar.fates_are_over() && line->IsQuiet();
    const CmxExchange::Outcome outcome = exchange.Run(command.cmd, command.payload, nullptr);
    const bool is_held_back = !command.payload.empty() && !lidar.WasAsked(first, command);
    ASSERT_TRUE(outcome.accepted || is_held_back || !lidar.AnsweredWell(first, began))
        << "command " << i << " fails, although everything was answered";
    if (outcome.accepted) {
      ASSERT_EQ(outcome.payload.size(), 1 + setting.payload.size());
      ASSERT_TRUE(lidar.MayAnswerTheLast(outcome.payload[0]))
          << "command " << i << ", " << int{command.cmd} << ", got the answer to number "
          << int{outcome.payload[0]} << " of " << lidar.asked();
    }
    in_step = is_over && outcome.accepted ? in_step + 1 : 0;
    ASSERT_TRUE(in_step < 2 || lidar.asked() == first + 1) << "all was well";
    line->Pass(setting.pause);
  }
}

// What nobody could tell apart, since the frames have no number, and what is done about it:
//  - A second copy that arrives after the next command with the same code has left looks like the
//    answer to that one. Here it arrives with the first, before anything else leaves.
//  - Of two liveness commands one is answered: the first one late and the second not yet, or the
//    first one never. When a command was given up between them, its answer may still come in the
//    first case alone, so that answer is counted for the first one, and the fence asks again: as
//    many times as liveness commands are owed from before, within its one time-out.
//  - With the code of the liveness command and a payload, a command is held back as long as one
//    answer of that code is owed: it would look like its own.
//  - A cut answer takes the first bytes of the one right behind it for its end, which then counts
//    as not given; behind 50 ms of silence it takes none.
TEST(CmxOrder, NoCommandEverGetsTheAnswerToAnother) {
  const std::vector<Command> data = {{0x31}};
  const std::vector<Command> mixed = {{0x31}, {kLiveness}, {0x31}, {0x32}, {0x31}};
  const std::vector<Command> checks = {{kLiveness}, {0x08}, {0x31}};
  const std::vector<Command> alive = {{kLiveness}};
  const std::vector<Command> same_code = {{kLiveness}, {kLiveness, {5}}, {0x31}, {kLiveness, {5}}};
  const milliseconds none(0);
  const milliseconds pause(700);
  const Bytes begins = {0x47, 0x74, kLiveness};
  const Bytes answers =
      FromHex("4774") + Bytes{kLiveness} + FromHex("00 00000001 00 4774 31 00 00000001 00");
  struct {
    int step;  ///< one order of so many
    Setting setting;
  } const cases[] = {
      {1, {"data", data, none}},
      {1, {"mixed", mixed, none}},
      {1, {"checks", checks, none}},
      {1, {"liveness alone", alive, none}},
      {5, {"data, paused", data, pause}},
      {5, {"mixed, paused", mixed, pause}},
      {5, {"checks, paused", checks, pause}},
      {5, {"liveness alone, paused", alive, pause}},
      {5, {"version 2", mixed, none, 2}},
      {5, {"headers begin in payloads", mixed, none, 1, begins}},
      {5, {"answers in payloads", mixed, none, 1, answers}},
      {5, {"answers in payloads, paused", data, pause, 1, answers}},
      {5, {"the code of the liveness command", same_code, none}},
  };
  for (const auto& [step, setting] : cases) {
    for (int order = 0; order < kOrders; order += step * kStep) {
      RunThrough(FatesOf(order), setting);
      ASSERT_FALSE(HasFatalFailure()) << setting.what << ", fates " << HexText(FatesOf(order));
    }
  }
}

TEST(CmxOrder, ALidarThatAnswersEverythingTwiceIsUnderstood) {
  Setting setting = {"twice", {{0x31}, {0x32}, {0x31}, {0x31}, {kLiveness}, {0x31}, {0x32}}};
  setting.copy_after = milliseconds(20);
  for (size_t count = 1; count < 20; ++count) {
    RunThrough(Bytes(count, kTwice), setting);
    ASSERT_FALSE(HasFatalFailure()) << count;
  }
}

TEST(CmxOrder, ACopyInFrontOfAnAnswerIsNotTakenForIt) {
  const auto answer = [](uint8_t return_code, const Bytes& payload) {
    return BuildCmxFrame(kCmxHeader1, 0x31, return_code, payload);
  };
  const Bytes first = answer(0, {1, 1});
  const Bytes own = answer(0, {2, 2});
  const struct {
    const char* what;
    Bytes behind;  ///< a copy of the first answer, in answer to the second request
    int32_t error;
    Bytes payload;
    size_t asked_for_the_third;  ///< with the fence, when the line may be out of step
  } cases[] = {
      {"another answer", own, 0, {2, 2}, 2},
      {"a refusal", answer(9, {}), 9, {}, 2},
      {"half an answer", Bytes(own.begin(), own.end() - 1), kReplyBrokeOff, {}, 2},
      {"half a header", Bytes(own.begin(), own.begin() + 5), 0, {1, 1}, 2},
      {"nothing: the same was meant", {}, 0, {1, 1}, 1},
  };
  for (const auto& [what, behind, error, payload, asked_for_the_third] : cases) {
    const auto line = std::make_shared<SimulatedLine>();
    size_t asked = 0;
    line->on_sent = [&, &behind = behind](const Bytes& frame) {
      ++asked;
      line->Arrive(milliseconds(1), asked == 1 ? first : asked == 2 ? first + behind : frame);
    };
    ExchangeOver exchange(line);
    EXPECT_EQ(exchange.Run(0x31, {1}, nullptr).payload, (Bytes{1, 1}));
    const CmxExchange::Outcome second = exchange.Run(0x31, {2}, nullptr);
    EXPECT_EQ(second.error, error) << what;
    EXPECT_EQ(second.accepted, error == 0) << what;
    EXPECT_EQ(second.payload, payload) << what;
    EXPECT_EQ(asked, 2U) << what << ": nothing is asked for that";
    EXPECT_EQ(exchange.Run(0x32, {3}, nullptr).payload, (Bytes{3})) << what;
    EXPECT_EQ(asked - 2, asked_for_the_third) << what;
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
