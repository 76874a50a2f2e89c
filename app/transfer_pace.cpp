#include "transfer_pace.h"

#include <cmath>

namespace {

constexpr int64_t kWindowMs = 6000;
constexpr int64_t kLeastSpanMs = 1500;

}  // namespace

void TransferPace::Note(int64_t now_ms, int kib) {
  if (!samples_.empty() && kib < samples_.back().kib) {
    samples_.clear();
  }
  samples_.push_back({now_ms, kib});
  while (now_ms - samples_.front().time_ms > kWindowMs) {
    samples_.pop_front();
  }
}

double TransferPace::KibPerSecond() const {
  if (samples_.empty()) {
    return 0;
  }
  const int64_t span_ms = samples_.back().time_ms - samples_.front().time_ms;
  const int kib = samples_.back().kib - samples_.front().kib;
  return span_ms < kLeastSpanMs ? 0 : kib * 1000.0 / static_cast<double>(span_ms);
}

int TransferPace::SecondsLeft(int total_kib) const {
  const double pace = KibPerSecond();
  return pace > 0 ? static_cast<int>(std::ceil((total_kib - samples_.back().kib) / pace)) : -1;
}
