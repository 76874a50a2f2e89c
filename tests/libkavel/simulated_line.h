#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <vector>

#include "libkavel/scripted_transport.h"

namespace kavel::lidar::testing {

/// A line in memory with a clock of its own, which runs on only while somebody waits: hours pass in
/// no time, and every run is the same. Bytes arrive in the order in which they were put on the
/// line.
class SimulatedLine : public ScriptedTransport {
 public:
  using Clock = std::chrono::steady_clock;
  using Time = std::chrono::milliseconds;

  /// Called with every frame that is sent.
  std::function<void(const Bytes& frame)> on_sent;

  /// `bytes` arrive `delay` from now, or behind those that are on the line already.
  void Arrive(Time delay, const Bytes& bytes) {
    last_arrival_ = std::max(last_arrival_, now_ + delay);
    for (const uint8_t byte : bytes) {
      coming_.push_back({last_arrival_, byte});
    }
  }
  void Pass(Time time) { now_ += time; }
  Time now() const { return now_; }
  std::function<Clock::time_point()> clock() const {
    return [this] { return Clock::time_point(now_); };
  }

  int32_t Send(uint8_t* data, uint16_t length, int32_t) override {
    on_sent({data, data + length});
    return length;
  }

  int32_t Receive(uint8_t* buffer, uint32_t length, int32_t flags) override {
    if (flags != kPoll) {
      const Time gives_up = now_ + timeout_;
      const Time next = coming_.empty() ? gives_up : coming_.front().at;
      now_ = std::max(now_, std::min(next, gives_up));
    }
    uint32_t count = 0;
    while (count < length && !coming_.empty() && coming_.front().at <= now_) {
      buffer[count++] = coming_.front().byte;
      coming_.pop_front();
    }
    return count == 0 ? -1 : static_cast<int32_t>(count);
  }

  bool SetReceiveTimeout(uint32_t ms) override {
    timeout_ = Time(ms);
    return true;
  }
  int32_t SetTimeout(uint32_t recv_ms, uint32_t) override {
    timeout_ = Time(recv_ms);
    return 0;
  }

 private:
  struct Coming {
    Time at;
    uint8_t byte;
  };

  Time now_{1000};
  Time last_arrival_{0};
  Time timeout_{500};
  std::deque<Coming> coming_;
};

}  // namespace kavel::lidar::testing
