#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// How many packets came within the last second, of a count that is looked at every kLookEveryMs.
class ArrivalRate {
 public:
  static constexpr int kLookEveryMs = 250;

  /// Begins anew: what has been counted before did not come within this second.
  void Restart(uint64_t count) {
    before_.fill(count);
    per_second_ = 0;
  }

  void Look(uint64_t count) {
    uint64_t& a_second_ago = before_[looks_++ % before_.size()];
    per_second_ = count - a_second_ago;
    a_second_ago = count;
  }

  uint64_t per_second() const { return per_second_; }

 private:
  std::array<uint64_t, 1000 / kLookEveryMs> before_{};
  size_t looks_ = 0;
  uint64_t per_second_ = 0;
};
