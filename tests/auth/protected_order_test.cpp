// Two protected commands in a row whose probes, challenges, responses and writes are answered late,
// twice, cut, with another code or not at all: what is told as written was written. The handshake
// in front of each keeps the answer to the write before away from it, as the fence does.

#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "auth/authorized_cmx_client.h"
#include "libkavel/fated_answers.h"

namespace {

using kavel::lidar::CmxExchange;
using kavel::lidar::kCmxHeader1;
using namespace kavel::lidar::testing;

constexpr uint8_t kProbe = 0xDF;
constexpr uint8_t kChallenge = 0x66;
constexpr uint8_t kResponse = 0xE0;
constexpr uint8_t kWrite = 0x21;
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kStep = 37;  // one order of so many
#else
constexpr int kStep = 5;
#endif

/// Carries out whatever arrives, save writing an even value; only its answers have a fate, from
/// number `first` on.
class Lidar {
 public:
  Lidar(SimulatedLine& line, int order, size_t first) : line_(line), order_(order), first_(first) {
    line_.on_sent = [this](const Bytes& frame) {
      const Bytes payload(frame.begin() + kCmxHeader1.size, frame.end());
      Answer(frame[kCmxHeader1.command_at], payload);
    };
  }

  Bytes written;  ///< the values in their order

 private:
  void Answer(uint8_t cmd, const Bytes& payload) {
    uint8_t return_code = 0;
    Bytes answer;
    if (cmd == kProbe) {
      answer = {0, 1};
    } else if (cmd == kChallenge) {
      challenge_ = Bytes(16, ++challenges_);
      answer = challenge_;
    } else if (cmd == kResponse) {
      is_open_ = payload == challenge_;
      return_code = is_open_ ? 0 : 5;
    } else if (cmd == kWrite) {
      return_code = std::exchange(is_open_, false) && payload.at(0) % 2 == 1 ? 0 : 5;
      if (return_code == 0) {
        written.push_back(payload.at(0));
      }
    }
    const int fate = asked_++ >= first_ ? TakeFate(&order_) : int{kInTime};
    Arrive(line_, fate, kCmxHeader1, BuildCmxFrame(kCmxHeader1, cmd, return_code, answer));
  }

  SimulatedLine& line_;
  int order_;
  const size_t first_;
  size_t asked_ = 0;
  uint8_t challenges_ = 0;
  Bytes challenge_;
  bool is_open_ = false;
};

/// A client's exchange in the line's own time.
class ExchangeSender : public kavel::lidar::CommandSender {
 public:
  explicit ExchangeSender(const std::shared_ptr<SimulatedLine>& line) : exchange_(line) {}

  bool IsOpen() override { return true; }
  using CommandSender::QueryCommand;
  int32_t QueryCommand(const Bytes& payload, Bytes& result, uint8_t cmd, bool /*with_header*/,
                       int32_t* error) override {
    CmxExchange::Outcome outcome = exchange_.Run(cmd, payload, nullptr);
    if (error != nullptr) {
      *error = outcome.error;
    }
    if (outcome.accepted) {
      result = std::move(outcome.payload);
    }
    return outcome.accepted ? 0 : -1;
  }

 private:
  ExchangeOver exchange_;
};

struct SameBytes : IAuthAlgorithm {
  Bytes Compute(const Bytes& challenge) override { return challenge; }
};

void RunThrough(int order, size_t first) {
  AuthConfig config;
  config.enabled = true;
  config.protected_cmds = {kWrite};
  config.probe_len = 2;
  const auto line = std::make_shared<SimulatedLine>();
  Lidar lidar(*line, order, first);
  AuthorizedCmxClient client(std::make_shared<ExchangeSender>(line), config, false, nullptr,
                             std::make_unique<SameBytes>());
  client.Probe();
  bool last = false;
  for (uint8_t value = 1; value <= 4 || !last; ++value) {
    ASSERT_LT(value, 20) << "a lidar that answers again is not understood";
    const size_t before = lidar.written.size();
    Bytes result;
    last = client.QueryCommand({value}, result, kWrite, false) == 0;
    ASSERT_TRUE(!last || (lidar.written.size() == before + 1 && lidar.written.back() == value))
        << "value " << int{value} << " is told as written";
  }
}

TEST(ProtectedOrder, NothingIsToldAsWrittenThatWasNot) {
  for (const size_t first : {0U, 1U, 3U}) {
    for (int order = 0; order < kOrders; order += kStep) {
      RunThrough(order, first);
      ASSERT_FALSE(HasFatalFailure()) << "order " << order << " of the answers from " << first;
    }
  }
}

}  // namespace
