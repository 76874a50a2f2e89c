#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
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

  /// `bytes` arrive `delay` from now, or behind those that are on the line already. Returns when.
  Time Arrive(Time delay, const Bytes& bytes) {
    if (bytes.empty()) {
      return now_;
    }
    last_arrival_ = std::max(last_arrival_, now_ + delay);
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    arrivals_.push_back({last_arrival_, bytes_.size()});
    return last_arrival_;
  }
  /// Nothing is on its way.
  bool IsQuiet() const { return received_ == bytes_.size(); }
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
    LetArrive();
    if (received_ == arrived_ && flags != kPoll) {
      const Time gives_up = now_ + timeout_;
      now_ = next_ == arrivals_.size() ? gives_up : std::min(gives_up, arrivals_[next_].at);
      LetArrive();
    }
    const size_t count = std::min<size_t>(length, arrived_ - received_);
    std::copy_n(bytes_.data() + received_, count, buffer);
    received_ += count;
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
  struct Arrival {
    Time at;
    size_t end;  ///< of its bytes
  };

  void LetArrive() {
    while (next_ < arrivals_.size() && arrivals_[next_].at <= now_) {
      arrived_ = arrivals_[next_++].end;
    }
  }

  Time now_{1000};
  Time last_arrival_{0};
  Time timeout_{500};
  Bytes bytes_;  ///< all that were ever put on the line
  size_t arrived_ = 0;
  size_t received_ = 0;
  std::vector<Arrival> arrivals_;
  size_t next_ = 0;
};

}  // namespace kavel::lidar::testing
